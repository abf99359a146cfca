#!/bin/sh
# Records a nightly backup under strace and writes the recording as SQL text.
#
#   ./record.sh [DIRECTORY]      DIRECTORY is the folder to back up; the default is /usr/share/doc
#
# Replaces backup.sql and first.sql next to this script. All other files are in a temporary directory, which is
# removed at the end. Mind the size of DIRECTORY: 150 MB take about twenty seconds.
set -eu

source_dir=${1:-/usr/share/doc}
case $0 in */*) here=${0%/*} ;; *) here=. ;; esac
here=$(cd "$here" && pwd)

missing=
need() {  # the program, the package it comes in
    command -v "$1" >/dev/null 2>&1 && return
    case "$missing " in *" $2 "*) ;; *) missing="$missing $2" ;; esac
}
need python3 python3
need strace strace
need sqlite3 sqlite3
need tar tar
need tee coreutils
need sha256sum coreutils
need gzip gzip
need xz xz-utils
need zstd zstd
if [ -n "$missing" ]; then
    echo "record.sh: some programs are missing; install them with: apt-get install$missing" >&2
    exit 1
fi
if [ ! -d "$source_dir" ]; then
    echo "record.sh: $source_dir is not a directory" >&2
    exit 1
fi
source_dir=$(cd "$source_dir" && pwd -P)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
work=$(cd "$work" && pwd -P)
export LC_ALL=C.UTF-8

echo "record.sh: preparing last night's archive and catalogue" >&2
python3 "$here/record.py" prepare "$source_dir" "$work"

echo "record.sh: running tonight's backup under strace" >&2
mkdir "$work/trace"
# One file per thread (-ff), so that no call is split over two lines; no contents of any buffer (-s 0).
strace -ff -ttt -T -y -s 0 --seccomp-bpf -o "$work/trace/t" \
    -e trace=execve,clone,clone3,vfork,openat,read,write,pread64,pwrite64 \
    python3 "$here/record.py" run "$source_dir" "$work"

echo "record.sh: reading the trace" >&2
python3 "$here/record.py" convert "$source_dir" "$work" "$work/backup.sql" "$work/first.sql"

# The text must build a database before it replaces the old one.
sqlite3 -bail "$work/backup.db" <"$work/backup.sql"
sqlite3 -bail "$work/first.db" <"$work/first.sql"
cp "$work/backup.sql" "$work/first.sql" "$here/"
echo "record.sh: wrote backup.sql and first.sql" >&2
