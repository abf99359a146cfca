#!/usr/bin/env bash
# Builds the program and shows what it does with a recorded backup. The only files that remain are in build/.
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

title "Checking the viewpoint against the database"
run tessera check backup.xml --db backup.db
echo "  no mistakes found"

title "The diagram: boxes in groups, each with its values"
run tessera render backup.xml --db backup.db -o diagram.json
python3 "$show" --boxes <diagram.json

title "The same as a picture"
run tessera render backup.xml --db backup.db -o backup.svg
run tessera render backup.xml --db backup.db -o backup.png --theme dark
cp backup.svg backup.png "$build/"
echo "  the pictures are build/backup.svg and build/backup.png"

title "What tee, which copies the archive, writes to each of its readers"
python3 "$show" --links --only tee <diagram.json

title "A session: one JSON request per line, one JSON answer per line"
requests=('{"request":"create"}' '{"request":"changeDisplayMode","in":{"mode":{"":"ratio"}}}')
echo '$ tessera session backup.xml --db backup.db'
printf '> %s\n' "${requests[@]}"
printf '%s\n' "${requests[@]}" | tessera session backup.xml --db backup.db >answers.jsonl
cut -c1-100 answers.jsonl | sed 's/^/< /; s/$/.../'
echo "For the same boxes, the second answer shows the share of the time spent in write:"
python3 -c 'import json, sys; print(json.dumps(json.loads(sys.stdin.readlines()[1])["out"]))' <answers.jsonl \
    | python3 "$show" --links --only tee

title "Try next"
cat <<'TEXT'
  sqlite3 backup.db < examples/backup/backup.sql
  build/release/bin/tessera render examples/backup/backup.xml --db backup.db --filter "selection=ts < 5"
  build/release/bin/tessera render examples/backup/backup.xml --db backup.db --mode size -o diagram.xml
  build/release/bin/tessera render examples/backup/backup.xml --db backup.db --direction tb -o diagram.pdf
  build/release/bin/tessera --help

  README.md                    how to draw your own data
  examples/backup/README.md    what the recording shows, and how to record your own
  docs/architecture.md         how the parts work together
TEXT
