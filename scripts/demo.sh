#!/usr/bin/env bash
# Builds the program and shows what it does, over a recorded backup. Leaves nothing behind but the build.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

title() { printf '\n== %s\n' "$*"; }
run() {
    printf '$ %s\n' "$*"
    "$@"
}

title "Installing what is missing and building (the first time takes a few minutes)"
./scripts/install-packages.sh program
mkdir -p build
if ! { cmake --preset release -DTESSERA_BUILD_TESTS=OFF && cmake --build --preset release --target tessera_cli; } >build/demo.log 2>&1; then
    cat build/demo.log
    exit 1
fi
PATH=$PWD/build/release/bin:$PATH
build=$PWD/build
example=$PWD/examples/backup
show=$PWD/scripts/show_diagram.py
tessera --version

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$example/backup.xml" "$work/"
cd "$work"
title "A result database, from the recording of a nightly backup"
echo '$ sqlite3 backup.db < backup.sql'
sqlite3 -bail backup.db <"$example/backup.sql"
sqlite3 backup.db "SELECT '  ' || COUNT(*) || ' rows, ' || MAX(ts + span) || ' seconds' FROM transfers"

title "Does the viewpoint fit it?"
run tessera check backup.xml --db backup.db
echo "  nothing is wrong with it"

title "The diagram: boxes in groups, each with its values"
run tessera render backup.xml --db backup.db -o diagram.json
python3 "$show" --boxes <diagram.json

title "The same as a picture"
run tessera render backup.xml --db backup.db -o backup.svg
run tessera render backup.xml --db backup.db -o backup.png --theme dark
cp backup.svg backup.png "$build/"
echo "  to look at: build/backup.svg, build/backup.png"

title "What the pipe's splitter, tee, writes to each of its readers"
python3 "$show" --links --only tee <diagram.json

title "A session: one JSON request a line, one JSON answer a line"
requests=('{"request":"create"}' '{"request":"changeDisplayMode","in":{"mode":{"":"ratio"}}}')
echo '$ tessera session backup.xml --db backup.db'
printf '> %s\n' "${requests[@]}"
printf '%s\n' "${requests[@]}" | tessera session backup.xml --db backup.db >answers.jsonl
cut -c1-100 answers.jsonl | sed 's/^/< /; s/$/.../'
echo "The second answer shows, for the same boxes, the share of the time spent in write:"
python3 -c 'import json, sys; print(json.dumps(json.loads(sys.stdin.readlines()[1])["out"]))' <answers.jsonl \
    | python3 "$show" --links --only tee

title "What to try next"
cat <<'TEXT'
  sqlite3 backup.db < examples/backup/backup.sql
  build/release/bin/tessera render examples/backup/backup.xml --db backup.db --filter "selection=ts < 5"
  build/release/bin/tessera render examples/backup/backup.xml --db backup.db --mode size -o diagram.xml
  build/release/bin/tessera render examples/backup/backup.xml --db backup.db --direction tb -o diagram.pdf
  build/release/bin/tessera --help

  examples/backup/README.md    what the recording shows, and how to make one of your own
  docs/architecture.md         how the pieces fit together
TEXT
