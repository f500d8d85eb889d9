// An empty program: the cost of starting a process.
int main() {
  return 0;
}
