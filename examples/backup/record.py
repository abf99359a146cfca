#!/usr/bin/env python3
"""The three steps of record.sh: prepare last night's files, run tonight's backup, convert its trace to SQL."""

import collections
import datetime
import glob
import json
import os
import platform
import re
import subprocess
import sys
import time

SAMPLE_SECONDS = 0.1                                # interval between two samples of CPU time and memory
SLOTS = (0.05, 0.1, 0.25, 0.5, 1.0, 2.0, 5.0, 10.0)  # possible lengths of a time slot
MOST_SLOTS = 60

IMPORT_SCRIPT = r"""CREATE TABLE IF NOT EXISTS entries(path TEXT PRIMARY KEY, nights INTEGER NOT NULL);
PRAGMA cache_size = -256;
CREATE TEMP TABLE incoming(path TEXT);
.mode list
.separator "\t" "\n"
.import /dev/stdin incoming
INSERT INTO entries SELECT path, 1 FROM incoming WHERE true
  ON CONFLICT(path) DO UPDATE SET nights = nights + 1;
"""


# --- prepare ----------------------------------------------------------------------------------------------

def tar_command(source_dir, *more):
    return ["tar", "-C", "/", "--sort=name", *more, source_dir.lstrip("/")]


def catalogue_command(work):
    return ["sqlite3", "-init", f"{work}/import.sql", f"{work}/catalogue.db", ".quit"]


def prepare(source_dir, work):
    """Makes the files of the night before: the archive, the catalogue of its entries, and the import script."""
    with open(f"{work}/import.sql", "w", encoding="utf-8") as script:
        script.write(IMPORT_SCRIPT)
    with open(f"{work}/previous.tar.zst", "wb") as archive, open(f"{work}/names", "wb") as names:
        tar = subprocess.Popen(tar_command(source_dir, "-cvf", "-"), stdout=subprocess.PIPE, stderr=names)
        zstd = subprocess.Popen(["zstd", "-q", "-c"], stdin=tar.stdout, stdout=archive)
        tar.stdout.close()
        if zstd.wait() or tar.wait():
            sys.exit("record.py: last night's archive could not be made")
    with open(f"{work}/names", "rb") as names:
        subprocess.run(catalogue_command(work), stdin=names, stderr=subprocess.DEVNULL, check=True)


# --- run --------------------------------------------------------------------------------------------------

def start_backup(source_dir, work):
    """Starts all processes of the backup; returns {process id: (name, its Popen)}."""
    started, ours = {}, []

    def pipe():
        ends = os.pipe()
        ours.extend(ends)
        return ends

    def output(name):
        ours.append(os.open(f"{work}/{name}", os.O_WRONLY | os.O_CREAT | os.O_APPEND, 0o600))
        return ours[-1]

    def start(name, command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=None, keep=()):
        process = subprocess.Popen(command, stdin=stdin, stdout=stdout, stderr=stderr, pass_fds=keep)
        started[process.pid] = (name, process)

    # The check of last night's archive.
    report = output("report.txt")
    unpacked_out, unpacked_in = pipe()
    start("unzstd", ["zstd", "-dcv", "--no-progress", f"{work}/previous.tar.zst"], stdout=unpacked_in, stderr=report)
    start("compare", ["tar", "-C", "/", "-dvf", "-"], stdin=unpacked_out, stdout=report, stderr=report)

    # Tonight's archive, and everything that reads it.
    archive_out, archive_in = pipe()
    names_out, names_in = pipe()
    branches = {}
    for name, command, target in (("gzip", ["gzip", "-c"], "docs.tar.gz"),
                                  ("xz", ["xz", "-1", "-c"], "docs.tar.xz"),
                                  ("zstd", ["zstd", "-q", "-c"], "docs.tar.zst"),
                                  ("sha256sum", ["sha256sum"], "docs.sha256")):
        branch_out, branches[name] = pipe()
        start(name, command, stdin=branch_out, stdout=output(target))
    start("sqlite3", catalogue_command(work), stdin=names_out, stderr=subprocess.DEVNULL)
    *listed, last = branches.values()
    start("tee", ["tee", *(f"/dev/fd/{fd}" for fd in listed)], stdin=archive_out, stdout=last, keep=listed)
    start("tar", tar_command(source_dir, f"--index-file=/dev/fd/{names_in}", "-cvf", "-"),
          stdout=archive_in, keep=(names_in,))
    for fd in ours:
        os.close(fd)
    return started


def usage_of(pid):
    """Returns the CPU seconds used so far and the bytes of memory in use; None when the process has ended."""
    try:
        with open(f"/proc/{pid}/stat", "rb") as stat:
            fields = stat.read().rpartition(b")")[2].split()
    except OSError:
        return None
    ticks = int(fields[11]) + int(fields[12])
    return ticks / os.sysconf("SC_CLK_TCK"), int(fields[21]) * os.sysconf("SC_PAGE_SIZE")


def run(source_dir, work):
    """Runs the backup to its end; writes the names of the processes and the samples to processes.json."""
    started = start_backup(source_dir, work)
    samples, failed = [], []
    cpu = dict.fromkeys(started, 0.0)
    seen = dict.fromkeys(started, time.time())
    running = set(started)

    def add(pid, total, memory):
        now = time.time()
        samples.append((seen[pid], now, started[pid][0], max(0.0, total - cpu[pid]), memory))
        seen[pid], cpu[pid] = now, max(total, cpu[pid])

    while running:
        time.sleep(SAMPLE_SECONDS)
        for pid in sorted(running):
            usage = usage_of(pid)
            ended, status, spent = os.wait4(pid, os.WNOHANG)
            if ended:
                # The kernel's total at the end includes what happened after the last sample. Its peak memory is not
                # used: it includes this Python program, which each process was before exec.
                add(pid, spent.ru_utime + spent.ru_stime, 0)
                started[pid][1].returncode = os.waitstatus_to_exitcode(status)
                if status:
                    failed.append(started[pid][0])
                running.remove(pid)
            elif usage:
                add(pid, *usage)
    if failed:
        sys.exit("record.py: failed: " + ", ".join(failed))
    with open(f"{work}/processes.json", "w", encoding="utf-8") as out:
        json.dump({"names": {pid: name for pid, (name, _) in started.items()}, "samples": samples}, out)


# --- convert ----------------------------------------------------------------------------------------------

CALL = re.compile(r"(?P<start>\d+\.\d+) (?P<call>p?(?:read|write)(?:64)?)\(\d+<(?P<path>.+?)>, .* = (?P<bytes>\d+)"
                  r" <(?P<took>\d+\.\d+)>$")
OPEN = re.compile(r"(?P<start>\d+\.\d+) openat\(.* = \d+<(?P<path>.+)> <(?P<took>\d+\.\d+)>$")
CLONE = re.compile(r"\d+\.\d+ (?:clone3?|vfork)\(.* = (?P<child>\d+) <")
PACKED = (".gz", ".xz", ".bz2", ".zst", ".zip", ".jar", ".png", ".jpg", ".pdf")


def place_of(path, source_dir, work):
    """Returns the name of a file in the diagram; None for a file that the diagram does not show."""
    if path.startswith(source_dir + "/"):
        return "packed files" if path.lower().endswith(PACKED) else "plain files"
    if path.startswith(work + "/"):
        return os.path.basename(path).replace("catalogue.db-journal", "catalogue.db")
    return None


def read_trace(work, names):
    """Returns the calls of all threads: (process, call, path, start, end, bytes); openat has 0 bytes."""
    traces = {int(path.rpartition(".")[2]): path for path in glob.glob(f"{work}/trace/t.*")}
    process = {int(pid): name for pid, name in names.items()}
    lines = {}
    for thread, path in sorted(traces.items()):
        with open(path, encoding="utf-8", errors="replace") as trace:
            lines[thread] = trace.read().splitlines()
    for thread in sorted(lines):  # a thread belongs to the process that created it; ids grow with time
        for line in lines[thread]:
            made = CLONE.match(line)
            if made and thread in process:
                process.setdefault(int(made["child"]), process[thread])
    calls = []
    for thread, name in process.items():
        text = lines.get(thread, [])
        begin = next((i for i, line in enumerate(text) if " execve(" in line and " = 0 <" in line), 0)
        for line in text[begin:]:
            found = CALL.match(line) or OPEN.match(line)
            if found:
                start = float(found["start"])
                fields = found.groupdict()
                calls.append((name, fields.get("call", "open"), found["path"], start,
                              start + float(found["took"]), int(fields.get("bytes") or 0)))
    return calls


class Slots:
    """Divides the time of the recording into slots of one length; the last one is shorter."""

    def __init__(self, start, end):
        self.start, self.total = start, end - start
        self.length = next((s for s in SLOTS if self.total <= s * MOST_SLOTS), SLOTS[-1])

    def index(self, moment):
        return min(int((moment - self.start) / self.length), int(self.total / self.length))

    def parts(self, start, end):
        """Yields (slot, seconds) for every slot that overlaps the time from start to end."""
        first, last = self.index(start), self.index(end)
        for slot in range(first, last + 1):
            low = max(start, self.start + slot * self.length) if slot > first else start
            high = min(end, self.start + (slot + 1) * self.length) if slot < last else end
            yield slot, max(0.0, high - low)

    def times(self, slot):
        begin = slot * self.length
        return round(begin, 3), round(min(self.length, self.total - begin), 3)


def transfers_of(calls, source_dir, work, slots):
    """Returns {(slot, source, target, side): [bytes, seconds, calls, files]} from all reads and writes."""
    writers, readers = {}, {}
    for name, call, path, *_ in calls:
        if path.startswith("pipe:") and call != "open":
            (writers if "write" in call else readers)[path] = name
    rows = collections.defaultdict(lambda: [0, 0.0, 0, 0])
    for name, call, path, start, end, size in calls:
        writing = "write" in call
        if path.startswith("pipe:"):
            other = (readers if writing else writers).get(path)
        else:
            other = place_of(path, source_dir, work)
        if other is None or (call == "open" and os.path.isdir(path)):
            continue
        key = (name, other, "write") if writing else (other, name, "read")
        if call == "open":
            if other.endswith(" files"):
                rows[(slots.index(end), *key)][3] += 1
            continue
        for slot, seconds in slots.parts(start, end):
            rows[(slot, *key)][1] += seconds
        row = rows[(slots.index(end), *key)]
        row[0] += size
        row[2] += 1
    return rows


def samples_of(samples, slots):
    """Returns {(slot, process): [CPU seconds, peak memory]}. A sample's CPU time is spread over the time that it covers."""
    rows = collections.defaultdict(lambda: [0.0, 0])
    for start, end, name, cpu, memory in samples:
        start, end = (min(max(moment, slots.start), slots.start + slots.total) for moment in (start, end))
        for slot, seconds in slots.parts(start, end):
            row = rows[(slot, name)]
            row[0] += cpu * (seconds / (end - start) if end > start else 1.0)
            row[1] = max(row[1], memory)
    return rows


def literal(value):
    if isinstance(value, str):
        return "'" + value.replace("'", "''") + "'"
    return f"{round(value, 6):.6f}".rstrip("0").rstrip(".") if isinstance(value, float) else str(value)


def insert(table, rows):
    values = ",\n".join("(" + ",".join(literal(value) for value in row) + ")" for row in rows)
    return f"INSERT INTO {table} VALUES\n{values};\n"


def today():
    return datetime.datetime.now(datetime.timezone.utc).date().isoformat()


def version(program):
    text = subprocess.run([program, "--version"], stdout=subprocess.PIPE, check=True, text=True).stdout
    return re.search(r"\d+(\.\d+)+", text)[0]


def head(source_dir, slots):
    programs = ", ".join(f"{program} {version(program)}" for program in ("tar", "gzip", "xz", "zstd", "strace"))
    system = platform.freedesktop_os_release().get("PRETTY_NAME", "Linux")
    return (f"-- A nightly backup of {source_dir}, recorded by record.sh on {today()}: {system}, "
            f"{os.cpu_count()} processors.\n-- {programs}.\n"
            f"-- {slots.total:.1f} seconds in slots of {slots.length:g} s, each read and write of each process "
            "counted. Tracing\n-- slows the programs down: compare the values with each other, not with an untraced run.\n")


SCHEMA = """
-- The data that passed from source to target during the slot that begins at ts and lasts span seconds, as one side
-- counted it: with side 'write' the source as it wrote, with 'read' the target as it read. seconds is the time
-- inside these calls (the kernel's work, and waiting), files the number of files opened. The saved files are
-- 'plain files' and 'packed files'; packed ones are compressed already, such as *.gz and *.png.
CREATE TABLE transfers(
  ts REAL, span REAL, source TEXT, target TEXT, side TEXT, bytes INTEGER, seconds REAL, calls INTEGER, files INTEGER);

-- CPU time and peak memory of a process during a slot.
CREATE TABLE samples(ts REAL, span REAL, process TEXT, cpu_seconds REAL, memory INTEGER);
"""

VIEWS = """
-- The transfers from the view of each process: its own calls only, with any partner.
CREATE VIEW ports AS
  SELECT ts, span, CASE side WHEN 'read' THEN target ELSE source END AS process, side,
         bytes, seconds, calls, files
  FROM transfers;

-- Input and output of each compressor.
CREATE VIEW compression AS
  SELECT ts, span, process AS tool,
         CASE side WHEN 'read' THEN bytes ELSE 0 END AS bytes_in,
         CASE side WHEN 'write' THEN bytes ELSE 0 END AS bytes_out
  FROM ports WHERE process IN ('gzip', 'xz', 'zstd');

-- The samples, with the part of the night to which each process belongs.
CREATE VIEW work AS
  SELECT *, CASE WHEN process IN ('unzstd', 'compare') THEN 'check' ELSE 'backup' END AS part FROM samples;

COMMIT;
"""


def first_example(source_dir, rows, slots):
    """Returns a few sums of the same recording: two steps of the pipeline, one row per third of the time."""
    steps = [("tee", "xz"), ("xz", "docs.tar.xz")]
    third = slots.total / 3
    sums = collections.defaultdict(lambda: [0, 0.0])
    for (slot, source, target, side), (size, seconds, *_) in rows.items():
        if side == "write" and (source, target) in steps:
            total = sums[(min(2, int(slot * slots.length / third)), steps.index((source, target)))]
            total[0] += size
            total[1] += seconds
    values = [(round(part * third, 2), round(third, 2), *steps[step], size, round(seconds, 3))
              for (part, step), (size, seconds) in sorted(sums.items())]
    return (f"-- A backup of {source_dir}: bytes and the time spent writing, for each third of its "
            f"{slots.total:.1f} seconds.\n-- Recorded by record.sh on {today()}.\n"
            "CREATE TABLE flows(ts REAL, span REAL, source TEXT, target TEXT, bytes INTEGER, seconds REAL);\n"
            + insert("flows", values))


def convert(source_dir, work, backup_sql, first_sql):
    with open(f"{work}/processes.json", encoding="utf-8") as file:
        recorded = json.load(file)
    calls = read_trace(work, recorded["names"])
    known = [call for call in calls if call[2].startswith("pipe:") or place_of(call[2], source_dir, work)]
    slots = Slots(min(call[3] for call in known), max(call[4] for call in known))
    rows = transfers_of(known, source_dir, work, slots)
    transfers = [(*slots.times(slot), *key, *values) for (slot, *key), values in sorted(rows.items())]
    samples = [(*slots.times(slot), name, *values)
               for (slot, name), values in sorted(samples_of(recorded["samples"], slots).items())]
    with open(backup_sql, "w", encoding="utf-8") as out:
        out.write(head(source_dir, slots) + "\nBEGIN;\n" + SCHEMA + "\n" + insert("transfers", transfers) + "\n"
                  + insert("samples", samples) + VIEWS)
    with open(first_sql, "w", encoding="utf-8") as out:
        out.write(first_example(source_dir, rows, slots))


if __name__ == "__main__":
    steps = {"prepare": prepare, "run": run, "convert": convert}
    steps[sys.argv[1]](*sys.argv[2:])
