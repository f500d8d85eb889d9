#!/usr/bin/env bash
# Owns deploy/dask: a cluster of a scheduler and two workers on this machine, with Debian's Python.
set -euo pipefail
source "$SOURCE/deploy/testing/common.sh"
slow_worker 0.2
export PYTHONPATH=$PREFIX/lib/python3/dist-packages

processes=()
trap 'kill "${processes[@]}" 2>/dev/null; wait' EXIT
address=tcp://127.0.0.1:28786
dask-scheduler --host 127.0.0.1 --port 28786 --no-dashboard --no-show >scheduler.log 2>&1 &
processes+=($!)
for name in one two; do
  dask-worker "$address" --name $name --nthreads 2 --no-dashboard --local-directory "$PWD/$name" >$name.log 2>&1 &
  processes+=($!)
done

inspect=(/usr/bin/python3 "$deploy/dask/inspect_with_dask.py" "$address" list results.jsonl)
echo '-- a document worker, a worker of Dask and then the client are killed'
"${inspect[@]}" &
client=$!
while [ ! -s results.jsonl ]; do sleep 0.1; done
kill_descendant "${processes[1]}" zelvo_document_worker
kill_descendant "${processes[1]}" spawn_main
sleep 2
kill -KILL $client
wait $client || true
[ "$(wc -l <results.jsonl)" -lt "$DOCUMENTS" ]
echo "$(wc -l <results.jsonl) documents had been done"
"${inspect[@]}"
grep 'Restarting worker' one.log
check_results results.jsonl
