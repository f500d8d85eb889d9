# Sourced by the scripts before they do anything: with --help, prints the comment at the top of the script and exits.
case ${1:-} in
  -h | --help)
    awk 'NR > 1 && !/^#/ { exit } NR > 1 { sub(/^# ?/, ""); print }' "$0"
    exit
    ;;
esac
