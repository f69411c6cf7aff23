`show iostat` report files: the controller of each path row, a disk that
fills up during the run, and a run ended by SIGTERM.

  $ python3 - "$TESTDIR/../../sim/topology/default.json" > topo.json <<'PY'
  > import json, sys
  > d = json.load(open(sys.argv[1]))
  > d["io"] = {
  >     "logical": [
  >         {"disk": 0, "path": 0, "reads": 10, "read_bytes": 4096, "read_ms": 2},
  >         {"disk": 0, "path": 1, "writes": 3, "write_bytes": 1000, "write_ms": 7}],
  >     "physical": [
  >         {"path": 1, "reads": 20, "read_bytes": 2048, "read_ms": 1},
  >         {"path": 11, "writes": 6, "write_bytes": 4096, "write_ms": 4}]}
  > json.dump(d, sys.stdout)
  > PY
  $ export CVSIM_TOPOLOGY="$PWD/topo.json" TZ=UTC
  $ . "$TESTDIR/lib.sh"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"
  $ mkdir "$CVADM_ROOT/reports"
  $ export CVSIM_FASTCLOCK=1

Each path row names the path's own controller: engine and letter on array
0, whose capability asks for them; the controller's own name on array 2;
the number on array 1:

  $ cv show iostat array_id=0,2,1 interval=60 file_name=/reports/ctrl duration=60 > /dev/null; echo "[$?]"
  [0]
  $ cut -d, -f2-4 "$CVADM_ROOT/reports/ctrl.csv"
  -        ,-           ,-       
  ArrayID  ,Controller  ,PathId  
  Array   0,-           ,-       
  Array   0,0A          ,0       
  Array   0,0B          ,1       
  Array   0,1A          ,2       
  Array   0,1B          ,3       
  Array   0,0A          ,4       
  Array   0,0B          ,5       
  Array   0,0A          ,18      
  Array   2,-           ,-       
  Array   2,CTE0.A      ,10      
  Array   2,CTE0.B      ,11      
  Array   2,CTE0.A      ,12      
  Array   1,-           ,-       
  Array   1,0           ,6       
  Array   1,1           ,7       
  Array   1,0           ,8       
  Array   1,1           ,9       
  Array   1,0           ,16      

The same for the logical paths of a VLUN, whose rows sit under the VLUN's
total:

  $ cv show iostat vlun_id=0 interval=60 file_name=/reports/lun duration=60 > /dev/null; echo "[$?]"
  [0]
  $ cut -d, -f2-5 "$CVADM_ROOT/reports/lun.csv"
  -        ,-           ,-       ,IOPS    
  VlunId   ,Controller  ,PathId  ,Total   
  VLUN    0,-           ,-       ,13      
  VLUN    0,0A          ,0       ,10      
  VLUN    0,0B          ,1       ,3       
  VLUN    0,1A          ,2       ,0       
  VLUN    0,1B          ,3       ,0       
  VLUN    0,0A          ,4       ,0       
  VLUN    0,0B          ,5       ,0       
  VLUN    0,0A          ,18      ,0       

The disk fills up after the first period (the second look at the free
space, after the first write): the writing stops with its message, the
display goes on to the end of the run, the file keeps the whole rows of
the first period, and the run's log line says the report fell short:

  $ CVSIM_FREE_KB=200000,184320 cv show iostat vlun_id=0 interval=60 file_name=/reports/full duration=180 > full.txt; echo "[$?]"
  [0]
  $ grep -c '^VLUN 0' full.txt
  3
  $ grep -v '^VLUN\|^Path\|^ \|^Lun\|^Controller\|^IO Perf' full.txt
  The specified disk space is less than 180M or get disk space failed.
  
  [show iostat file_name] has reached the maximum running time.
  $ cut -d, -f1-5 "$CVADM_ROOT/reports/full.csv"
  -                    ,-        ,-           ,-       ,IOPS    
  Time                 ,VlunId   ,Controller  ,PathId  ,Total   
  [2026-11-18 11:07:40],VLUN    0,-           ,-       ,13      
  [2026-11-18 11:07:40],VLUN    0,0A          ,0       ,10      
  [2026-11-18 11:07:40],VLUN    0,0B          ,1       ,3       
  [2026-11-18 11:07:40],VLUN    0,1A          ,2       ,0       
  [2026-11-18 11:07:40],VLUN    0,1B          ,3       ,0       
  [2026-11-18 11:07:40],VLUN    0,0A          ,4       ,0       
  [2026-11-18 11:07:40],VLUN    0,0B          ,5       ,0       
  [2026-11-18 11:07:40],VLUN    0,0A          ,18      ,0       
  $ operlog | tail -n 1
  [3] [CLI] [1] [1396789593] [show iostat vlun_id=0 interval=60 file_name=/reports/full duration=180] [Start writing performance data to report] [0]

SIGTERM ends a run as Ctrl-C does, between two samples: the rows written so
far are whole and on disk, the run has its operation-log line, and then
the process ends as SIGTERM asks (the subshell puts back the default
disposition a background job of a script starts with):

  $ unset CVSIM_FASTCLOCK
  $ (trap - TERM; exec "$CVADM_SIM" show iostat vlun_id=0 file_name=/reports/term archive_time=5 > term.txt) &
  $ pid=$!
  $ while [ ! -s "$CVADM_ROOT/reports/term.csv" ]; do sleep 0.2; done; kill -TERM $pid; wait $pid; echo "[$?]"
  [143]
  $ awk -F, 'NF != 13 || length($0) < 150 { print "broken row " NR ": " $0 }' "$CVADM_ROOT/reports/term.csv"
  $ tail -c 1 "$CVADM_ROOT/reports/term.csv" | od -An -c
    \n
  $ head -n 3 term.txt
  IO Performance Information
                       IOPS                      KB/S                 response time(ms)
              Total   |Read    |Write   Total   |Read    |Write   Total   |Read    |Write
  $ operlog | tail -n 1
  [4] [CLI] [1] [1396789593] [show iostat vlun_id=0 file_name=/reports/term archive_time=5] [Start writing performance data to report] [1]
