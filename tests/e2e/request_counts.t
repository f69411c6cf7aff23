Driver requests of each listing on the largest host the driver allows
(generated into the build directory). Each count is the least the display
rules need, worked out below from the topology's own numbers:

- show array: the array list; per array its record, its disk list (LUN
count) and its controller list; per controller its record; per path its
record and its disk list (the path's LUN count).
- show array id=N: the array's record, disk list and controller list; per
controller its record and name; per path of the array its record and
disk list.
- show vlun type=all: the array list; per array its disk list; per
controller its name; per disk its record and per VLUN its record.
- show vlun id=N: the VLUN's record, its disk's record and logical path
list, one record per logical path; the controller list of its array, per
controller its record and name.
- show path: the array list; per array its path list; per path its
record; per controller its name.
- show path id=N: the path's record and its controller's name.

  $ . "$TESTDIR/lib.sh"
  $ CVSIM_TOPOLOGY="$CVSIM_LARGEST" "$CVADM_SIM" --setup "$CVADM_ROOT" > /dev/null
  $ export CVSIM_REQUEST_LOG=brief
  $ /usr/bin/python3 - "$CVADM_ROOT/sim/topology.json" > expected.txt <<'PY'
  > import json, sys
  > t = json.load(open(sys.argv[1]))
  > arrays, paths, disks, vluns = t["arrays"], t["paths"], t["disks"], t["vluns"]
  > A, P, D, V = len(arrays), len(paths), len(disks), len(vluns)
  > C = sum(len(a["controllers"]) for a in arrays)
  > a5 = next(a for a in arrays if a["id"] == 5)
  > c5, p5 = len(a5["controllers"]), sum(1 for p in paths if p["array"] == 5)
  > v77 = next(v for v in vluns if v["id"] == 77)
  > d77 = next(d for d in disks if d["id"] == v77["disks"][0])
  > a77 = next(a for a in arrays if a["id"] == d77["array"])
  > l77 = len(d77.get("paths", [p for p in paths if p["array"] == a77["id"]]))
  > print(1 + 3 * A + C + 2 * P, "show array", sep="|")
  > print(3 + 2 * c5 + 2 * p5, "show array id=5", sep="|")
  > print(1 + A + C + D + V, "show vlun type=all", sep="|")
  > print(3 + l77 + 1 + 2 * len(a77["controllers"]), "show vlun id=77", sep="|")
  > print(1 + A + P + C, "show path", sep="|")
  > print(2, "show path id=9", sep="|")
  > PY
  $ while IFS='|' read -r expected words; do
  >   : > "$CVADM_ROOT/sim/requests.log"
  >   cv $words > /dev/null || echo "$words failed"
  >   got=$(wc -l < "$CVADM_ROOT/sim/requests.log")
  >   if [ "$got" = "$expected" ]; then echo "$words: $got"; else echo "$words: $got, expected $expected"; fi
  > done < expected.txt
  show array: 2689
  show array id=5: 23
  show vlun type=all: 33153
  show vlun id=77: 16
  show path: 1409
  show path id=9: 2

The largest host is read from a snapshot made by the first request; a
changed topology is read again:

  $ ls "$CVADM_ROOT/sim" | grep -c '^topology.json.snap$'
  1
  $ sed -i 's/"name":"gen-array-005"/"name":"gen-array-five"/' "$CVADM_ROOT/sim/topology.json"
  $ cv show array id=5 | grep -c 'gen-array-five'
  1
