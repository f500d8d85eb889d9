// A program that does nothing: what starting a process costs.
int main() {
  return 0;
}
