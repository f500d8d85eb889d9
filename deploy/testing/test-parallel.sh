#!/usr/bin/env bash
# Owns deploy/parallel, run-shard and merge-shards: on one machine, and by ssh with and without a shared folder.
set -euo pipefail
source "$SOURCE/deploy/testing/common.sh"
slow_worker 0.2

run_batch() {
  local results=$1
  shift
  "$deploy/parallel/run-batch" inspect list "$results" 8 "$@"
}

echo '-- one machine; a worker, a shard and then everything are killed'
setsid "$deploy/parallel/run-batch" inspect list local 8 --jobs 2 &
batch=$!
kill_descendant $batch zelvo_document_worker
kill_descendant $batch 'zelvo batch'
sleep 2
kill -KILL -- -$batch
wait $batch || true
cat local/[0-9]*.jsonl >before
[ "$(wc -l <before)" -lt "$DOCUMENTS" ] || {
  echo 'Everything was done before it was killed.' >&2
  exit 1
}
echo "$(wc -l <before) documents had been done"
run_batch local --jobs 2 || [ $? -eq 1 ]
check_results local/all.jsonl
unset ZELVO_LIBEXEC

echo '-- two logins by ssh'
ssh-keygen -q -t ed25519 -N '' -f host_key
ssh-keygen -q -t ed25519 -N '' -f key
cat >sshd_config <<END
ListenAddress 127.0.0.1
Port 22022
HostKey $PWD/host_key
AuthorizedKeysFile $PWD/key.pub
PasswordAuthentication no
PermitRootLogin prohibit-password
StrictModes no
UsePAM no
PidFile none
SetEnv PATH=$PATH
END
[ "$(id -u)" -ne 0 ] || mkdir -p /run/sshd # a fixed path of Debian's sshd
/usr/sbin/sshd -D -e -f "$PWD/sshd_config" 2>sshd.log &
sshd=$!
trap 'kill $sshd' EXIT
ssh="ssh -F none -p 22022 -i $PWD/key -o BatchMode=yes"
ssh+=" -o UserKnownHostsFile=$PWD/known_hosts -o StrictHostKeyChecking=accept-new"
for _ in $(seq 50); do
  if $ssh 127.0.0.1 true 2>ssh.log; then break; fi
  sleep 0.1
done
printf '2/%s\n' "$(id -un)@127.0.0.1" "$(id -un)@localhost" >nodes

run_batch shared --sshloginfile nodes --ssh "$ssh" || [ $? -eq 1 ]
check_results shared/all.jsonl
cut -f2 shared/joblog | sort | uniq -c | grep '@' # both logins had jobs

echo '-- by ssh, each document is sent and its line fetched: several connections for each'
head -n 20 list >few
parallel --controlmaster --quote --sshloginfile nodes --ssh "$ssh" --workdir ... --transferfile {} --cleanup \
  zelvo batch inspect --quiet {} <few >sent.jsonl || [ $? -le 101 ]
check_results sent.jsonl few
