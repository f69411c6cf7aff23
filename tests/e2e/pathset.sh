# Sourced by the path command transcripts: `sent` prints the path requests
# since the request log was last emptied, then empties it. Common set
# requests (nr 50) are decoded at their offsets (sub-command, result, the
# result word at 4, the path at 8, the fields at 16 and 40); statistics
# clearings (nr 108) by their path at 0.
sent() {
  /usr/bin/python3 -c '
import re, sys
for line in open(sys.argv[1]):
    m = re.search(r"^nr=(50|108) .* result=(\d+) in=([0-9a-f]*) out=([0-9a-f]*)", line)
    if not m:
        continue
    b, o = bytes.fromhex(m.group(3)), bytes.fromhex(m.group(4))
    u32 = lambda d, off: int.from_bytes(d[off:off + 4], "little")
    if m.group(1) == "108":
        print("clear statistic path=%d result=%s size=%d" % (u32(b, 0), m.group(2), len(b)))
        continue
    print("sub=%d result=%s word=%d path=%d at16=%d at40=%d size=%d"
          % (u32(b, 0), m.group(2), u32(o, 4), u32(b, 8), u32(b, 16), u32(b, 40), len(b)))' "$CVADM_ROOT/sim/requests.log"
  : > "$CVADM_ROOT/sim/requests.log"
}
