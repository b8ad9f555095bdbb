#!/bin/sh
# two_machines.sh DIRECTORY COMMAND…: runs COMMAND, a line for the shell, with the ssh hosts "one" and "two": two
# servers on loopback addresses with their keys and settings in DIRECTORY. When the file DIRECTORY/begun appears, "two"
# is killed with all its processes. SSH_CONFIG is the ssh configuration. Needs root, which alone can run a server for
# several sessions.
set -eu

directory=$1
shift
export SSH_CONFIG="$directory/ssh.conf"

serve() {
  cat >"$directory/$1.conf" <<END
ListenAddress $2:$3
HostKey $directory/key
AuthorizedKeysFile $directory/key.pub
SetEnv MACHINE=$1
PidFile none
StrictModes no
UsePAM no
END
  cat >>"$SSH_CONFIG" <<END
Host $1
  HostName $2
  Port $3
  IdentityFile $directory/key
  IdentitiesOnly yes
  StrictHostKeyChecking no
  UserKnownHostsFile /dev/null
  LogLevel ERROR
END
  # Separate process and mount namespaces; the server needs its own directory in /run.
  unshare --mount --pid --fork --kill-child --mount-proc sh -c \
    "mount -t tmpfs none /run && mkdir /run/sshd && exec $(command -v sshd) -D -e -f '$directory/$1.conf'" \
    >"$directory/$1.log" 2>&1 &
}

ssh-keygen -q -t ed25519 -N '' -f "$directory/key"
port=$((20000 + $$ % 20000))
serve one 127.0.0.1 $port
one=$!
serve two 127.0.0.2 $port
two=$!
killer=
trap 'kill -9 $one $two $killer 2>/dev/null || true' EXIT
for machine in one two; do
  tries=0
  until ssh -F "$SSH_CONFIG" $machine true 2>/dev/null; do
    tries=$((tries + 1))
    [ $tries -lt 100 ] || { cat "$directory/$machine.log" >&2; exit 1; }
    sleep 0.1
  done
done
(
  tries=0
  until [ -e "$directory/begun" ] || [ $tries -ge 2000 ]; do
    tries=$((tries + 1))
    sleep 0.05
  done
  kill -9 $two
) &
killer=$!
sh -c "$*"
