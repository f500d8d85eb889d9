#!/usr/bin/env bash
# Owns deploy/slurm: an array of jobs on a cluster of one node, started here as root.
set -euo pipefail
source "$SOURCE/deploy/testing/common.sh"
slow_worker 0.3

daemons=()
end() {
  local status=$?
  [ $status -eq 0 ] || tail -n 30 ./*.log results/*.log || true
  scancel --user=root 2>/dev/null || true
  kill "${daemons[@]}" 2>/dev/null || true
  wait
  exit $status
}
trap end EXIT

dd if=/dev/urandom of=munge.key bs=128 count=1 status=none
chmod 400 munge.key
mkdir run state spool
# As root munged warns about, and refuses, folders that other users may write to, unless it is forced.
munged --foreground --force --key-file=munge.key --socket="$PWD/run/munge" --pid-file="$PWD/run/munged.pid" \
  --seed-file="$PWD/run/seed" --log-file="$PWD/munged.log" >/dev/null 2>&1 &
daemons+=($!)

node=$(hostname -s)
cat >slurm.conf <<END
ClusterName=test
SlurmctldHost=$node(127.0.0.1)
SlurmctldPort=26817
SlurmdPort=26818
SlurmUser=root
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket=$PWD/run/munge
StateSaveLocation=$PWD/state
SlurmdSpoolDir=$PWD/spool
SlurmctldPidFile=$PWD/run/slurmctld.pid
SlurmdPidFile=$PWD/run/slurmd.pid
SlurmctldLogFile=$PWD/slurmctld.log
SlurmdLogFile=$PWD/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
MpiDefault=none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerParameters=batch_sched_delay=0,sched_interval=2,bf_interval=2
ReturnToService=2
NodeName=$node NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=ALL Default=YES State=UP
END
export SLURM_CONF=$PWD/slurm.conf
while [ ! -S run/munge ]; do sleep 0.1; done
slurmctld -D -f slurm.conf >/dev/null 2>&1 &
daemons+=($!)
slurmd -D -f slurm.conf >/dev/null 2>&1 &
slurmd=$!
daemons+=($slurmd)
for _ in $(seq 100); do
  if sinfo --noheader --format=%T 2>/dev/null | grep -q idle; then break; fi
  sleep 0.2
done
sinfo

# --mem of the jobs: the nodes of the test do not say how much they have.
last=$("$deploy/slurm/submit" inspect list results 4 --mem=0)
array=$((last - 1))
echo '-- a worker, a shard and then the whole task are killed, another task is requeued'
# The first script that slurmd has started: it is no descendant, its parent is made independent of slurmd.
for _ in $(seq 100); do
  if task=$(pgrep --oldest --full "$PWD/spool/job.*/slurm_script"); then break; fi
  sleep 0.1
done
kill_descendant "$task" zelvo_document_worker
kill_descendant "$task" 'zelvo batch'
sleep 1
scancel --signal=KILL --full "${array}_1"
scontrol requeue "${array}_2"
# Slurm waits for two minutes before it starts a job again.
sleep 2
scontrol update "JobId=${array}_2" StartTime=now
squeue
while squeue --noheader | grep -q .; do sleep 1; done
scontrol --oneliner show job "$array" | grep -o '\(ArrayTaskId\|JobState\|Restarts\)=[^ ]*' | paste -d' ' - - -
cat results/merge.log
check_results results/all.jsonl
