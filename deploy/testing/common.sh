# Sourced by the tests of this folder, which run in an empty folder. $SOURCE is the project, $PREFIX where it is
# installed, $DOCUMENTS how many documents to test with.

testing=$SOURCE/deploy/testing
deploy=$PREFIX/share/zelvo/deploy
python3 "$testing/write_documents.py" "$SOURCE/examples/quarterly-sales.xlsx" "$DOCUMENTS" documents list

# check_results RESULTS [LIST]
check_results() {
  python3 "$testing/check_results.py" "${2:-list}" "$1"
}

kill_descendant() {
  python3 "$testing/kill_descendant.py" "$@"
}

# slow_worker SECONDS: sets $ZELVO_LIBEXEC to a folder with a worker that first sleeps, so that there is time to kill it.
slow_worker() {
  mkdir slow
  cat >slow/zelvo_document_worker <<END
#!/bin/sh
/bin/sleep $1
exec $PREFIX/libexec/zelvo/zelvo_document_worker
END
  chmod +x slow/zelvo_document_worker
  export ZELVO_LIBEXEC=$PWD/slow
}
