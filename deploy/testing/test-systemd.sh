#!/usr/bin/env bash
# Owns deploy/systemd: that the units are valid, that worker and cleaner answer behind a socket of systemd, and, in a
# container where systemd is booted, that they answer under the restrictions of the units.
set -euo pipefail
source "$SOURCE/deploy/testing/common.sh"
units=$PREFIX/lib/systemd/system

echo '-- units'
# It reports problems of all units that it loads, those of this machine too.
SYSTEMD_UNIT_PATH=$units: systemd-analyze verify --man=no "$units"/zelvo-* 2>verify.log || true
if grep zelvo verify.log; then exit 1; fi

echo '-- systemd-socket-activate; a worker is killed'
systemd-socket-activate --accept --inetd --listen "$PWD/worker.sock" \
  "$PREFIX/libexec/zelvo/zelvo_document_worker" 2>activate.log &
activate=$!
trap 'kill $activate' EXIT
while [ ! -S worker.sock ]; do sleep 0.1; done
python3 "$testing/ask_socket.py" "$PWD/worker.sock" list activate.jsonl pkill -KILL -P $activate
check_results activate.jsonl

echo '-- systemd booted in a container; workers and cleaners are killed'
if ! systemd-nspawn --quiet --register=no --keep-unit --directory=/ --volatile=yes /usr/bin/true 2>nspawn.log; then
  echo "NOT TESTED: systemd-nspawn does not run here: $(tail -n 1 nspawn.log)"
  exit
fi
cp -r "$units" system
cat >system/test.service <<END
[Unit]
SuccessAction=poweroff-force
FailureAction=poweroff-force
[Service]
Type=oneshot
WorkingDirectory=/srv
Environment=PREFIX=$PREFIX PYTHONDONTWRITEBYTECODE=1 LC_ALL=C.UTF-8
ExecStart=/usr/bin/python3 /opt/ask_units.py
StandardOutput=tty
StandardError=tty
TimeoutStartSec=240
END
# The system in the container has this machine's /usr, read-only, and nothing else of it.
timeout 300 systemd-nspawn --quiet --register=no --keep-unit --directory=/ --volatile=yes --bind-ro="$PREFIX" \
  --bind-ro="$PWD/system:/etc/systemd/system" --bind-ro="$PREFIX/lib/sysusers.d:/etc/sysusers.d" --bind-ro="$testing:/opt" --bind="$PWD:/srv" \
  --boot systemd.unit=test.service systemd.firstboot=off >boot.log 2>&1 </dev/null || true
grep -a 'documents a second' boot.log || true
[ -f passed ] || {
  cat -v boot.log
  exit 1
}
check_results worker.jsonl
check_results cleaner.jsonl
