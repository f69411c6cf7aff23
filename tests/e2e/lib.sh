# Sourced by every transcript: a fresh sandbox with the simulated driver, a
# fixed clock, and `cv` to run the real binary on it.
export CVADM_ROOT="$PWD/root"
export CVSIM_NOW=1795000000
"$CVADM_SIM" --setup "$CVADM_ROOT" >/dev/null
cv() { "$CVADM_SIM" "$@"; }
# The trace log, without its date column (the clock of the program is real).
tracelog() { sed -E 's/^\[[^]]*\] //' "$CVADM_ROOT/opt/Corvane/log/cli_uil_log.txt"; }
# Request log lines, without the payload bytes.
requests() { sed -E 's/ in=.*//' "$CVADM_ROOT/sim/requests.log"; }
# The operation log without its date, user and Chinese columns.
operlog() { awk -F'\\] \\[' '{print $1"] ["$4"] ["$5"] ["$6"] ["$7"] ["$8"] ["$10}' "$CVADM_ROOT/opt/Corvane/log/oper_log"; }
# The last request the driver saw, decoded at the offsets of the
# configuration notify payload.
notified() {
  tail -n 1 "$CVADM_ROOT/sim/requests.log" | /usr/bin/python3 -c '
import re, sys
m = re.search(r"nr=(\d+) .* result=(\d+) in=([0-9a-f]*)", sys.stdin.read())
b = bytes.fromhex(m.group(3))
text = lambda off, n: b[off:off + n].split(b"\0")[0].decode()
u32 = lambda off: int.from_bytes(b[off:off + 4], "little")
print("nr=%s result=%s size=%d type=%d instance=%r count=%d item=%s value=%s"
      % (m.group(1), m.group(2), len(b), u32(0), text(4, 33), u32(40), text(44, 32), text(76, 64)))
print("other bytes zero:", not b[4:40].strip(b"\0") and not b[44 + len(text(44, 32)):76].strip(b"\0")
      and not b[76 + len(text(76, 64)):].strip(b"\0"))'
}

# The full usage text, as `help` prints it; `cvu` runs a command and shows
# its output with that text folded to "<usage>", then its exit status.
# A command's own usage block (its "Usage:" line to the end of the output)
# is shown in full once by `usage_of NAME command...`, which keeps it; from
# then on it is folded to "<NAME usage>" as well.
cv help > "$PWD/usage.txt"
fold_usage() {
  /usr/bin/python3 -c '
import os, sys
out = sys.stdin.read().replace(open(sys.argv[1]).read(), "<usage>\n")
kept = sys.argv[2]
for name in sorted(os.listdir(kept)) if os.path.isdir(kept) else []:
    block = open(os.path.join(kept, name)).read()
    if block:
        out = out.replace(block, "<%s usage>\n" % name)
sys.stdout.write(out)' "$PWD/usage.txt" "$PWD/usages"
}
cvu() { cv "$@" > "$PWD/out.txt"; local rc=$?; fold_usage < "$PWD/out.txt"; echo "[$rc]"; }
usage_of() {
  local name=$1; shift
  cvu "$@"; mkdir -p "$PWD/usages"
  sed -n '/^Usage:/,$p' "$PWD/out.txt" > "$PWD/usages/$name"
}
# Runs each input line as the words of one command and prints one line per
# case: exit status, the words, and the output (usages folded) with its
# lines joined by " | ".
refusals() {
  local words rc
  while read -r -a words; do
    cv "${words[@]}" < /dev/null > "$PWD/out.txt"; rc=$?
    printf '[%s] %s: %s\n' "$rc" "${words[*]}" \
      "$(fold_usage < "$PWD/out.txt" | awk 'NR > 1 { printf " | " } { printf "%s", $0 }')"
  done
}
# Runs the prompt on the given lines.
prompt() { printf '%s\n' "$@" | cv > "$PWD/out.txt"; local rc=$?; fold_usage < "$PWD/out.txt"; echo "[$rc]"; }

# The driver's kernel log ring under the log directory: "cur_index" names the
# current file xmp_log<index>.txt. `klog_rotate INDEX` makes INDEX current
# and empties its file, as the driver does when it moves on; `klog TEXT...`
# appends lines to the current file; `klog_event TIME ID OBJECT NUMBER
# [NUMBER2] MESSAGE` appends a key event line as the driver writes it.
klog_dir="$CVADM_ROOT/opt/Corvane/log"
klog_rotate() { printf '%s' "$1" > "$klog_dir/cur_index"; : > "$klog_dir/xmp_log$1.txt"; }
klog() { local i; i=$(cat "$klog_dir/cur_index"); printf '%s\n' "$@" >> "$klog_dir/xmp_log$i.txt"; }
klog_event() {
  local time=$1 id=$2 object=$3 number=$4 extra=""
  shift 4
  if (($# > 1)); then extra="[$1]"; shift; fi
  klog "[$time][mpx][EVENT][core][42][$id][$object][$number]$extra$1"
}
