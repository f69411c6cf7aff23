The effective configuration of the host, of one array and of one VLUN, and
its clearing. A value set on an array shows through on its VLUNs, and the
load-balance mode is written as the verbose displays write it.

  $ . "$TESTDIR/lib.sh"
  $ printf 0 > "$CVADM_ROOT/opt/Corvane/log/serial_oper"

The host as the driver starts:

  $ cv show cvconfig; echo "[$?]"
  =======================================================
                   Corvane Configuration                 
  =======================================================
  Basic Configuration
      Working Mode : load balancing within controller
      LoadBalance Mode : minimal queue depth algorithm
      Loadbanlance io threshold : 100
      LUN Trespass : on
  
  Advanced Configuration
      Io Retry Times : 10
      Io Retry Delay : 0
      Faulty path check interval : 10
      Idle path check interval : 60
      Failback Delay Time : 600
      Io Suspension Time : 60
      Max io retry timeout : 1800
      Performance Record : off
  
  Path reliability configuration
      Timeout degraded statistical time : 600
      Timeout degraded threshold : 1
      Timeout degraded path recovery time : 1800
      Intermittent IO error degraded statistical time : 300
      Min. I/Os for intermittent IO error degraded statistical : 5000
      Intermittent IO error degraded threshold : 20
      Intermittent IO error degraded path recovery time : 1800
      Intermittent fault degraded statistical time : 1800
      Intermittent fault degraded threshold : 3
      Intermittent fault degraded path recovery time : 3600
      High latency degraded statistical time : 300
      High latency degraded threshold : 1000
      High latency degraded path recovery time : 3600
      Sensitive delayed degraded threshold : 30000
      Sensitive delayed degraded recovery time : 120
  
  Dualsite configuration
      Dualsite Primary Array SN : 2102351QLH10K7000001
      Dualsite WorkingMode : read write within primary array
      Dualsite Split Size : 128MB
  [0]

Refusals print the usage and touch nothing:

  $ cv show cvconfig array_id=0 vlun_id=1; echo "[$?]"
  Error: Invalid input!
  Usage:
      -- show cvconfig [array_id=ID|vlun_id=ID]
  [1]
  $ cv show cvconfig array_id=99; echo "[$?]"
  The disk array whose ID is 99 does not exist.
  [1]
  $ cv show cvconfig vlun_id=4000; echo "[$?]"
  The VLUN whose ID is 4000 does not exist.
  [1]
  $ cv clear cvconfig; echo "[$?]"
  Error: Invalid input!
  Usage:
      -- clear cvconfig array_id=ID|vlun_id=ID
  [1]
  $ cv clear cvconfig array_id=99; echo "[$?]"
  The disk array whose ID is 99 does not exist.
  [1]
  $ cv clear cvconfig vlun_id=4000; echo "[$?]"
  The VLUN whose ID is 4000 does not exist.
  [1]

An array value, seen on the array and through on a VLUN of it:

  $ echo y | cv set loadbalancemode=min-task array_id=0 > /dev/null; echo "[$?]"
  [0]
  $ cv show cvconfig array_id=0; echo "[$?]"
  =======================================================
                   Corvane Configuration                 
  =======================================================
  Working Mode : load balancing within controller
  LoadBalance Mode : minimal task algotithm
  Loadbanlance io threshold : 100
  LUN Trespass : on
  Io Suspension Time : 60
  Max io retry timeout : 1800
  Dualsite Primary Array SN : 2102351QLH10K7000001
  Dualsite WorkingMode : read write within primary array
  Dualsite Split Size : 128MB
  [0]
  $ cv show cvconfig vlun_id=1; echo "[$?]"
  =======================================================
                   Corvane Configuration                 
  =======================================================
  Working Mode : load balancing within controller
  LoadBalance Mode : minimal task algotithm
  Loadbanlance io threshold : 100
  LUN Trespass : on
  Io Suspension Time : 60
  Max io retry timeout : 1800
  Dualsite Primary Array SN : 2102351QLH10K7000001
  Dualsite WorkingMode : read write within primary array
  Dualsite Split Size : 128MB
  [0]

Clearing the array's section brings the host's values back:

  $ cv clear cvconfig array_id=0; echo "[$?]"
  Succeeded in executing the command.
  [0]
  $ cv show cvconfig array_id=0; echo "[$?]"
  =======================================================
                   Corvane Configuration                 
  =======================================================
  Working Mode : load balancing within controller
  LoadBalance Mode : minimal queue depth algorithm
  Loadbanlance io threshold : 100
  LUN Trespass : on
  Io Suspension Time : 60
  Max io retry timeout : 1800
  Dualsite Primary Array SN : 2102351QLH10K7000001
  Dualsite WorkingMode : read write within primary array
  Dualsite Split Size : 128MB
  [0]

The clearing is logged with its command and outcome:

  $ operlog | tail -n 1 | awk -F'\\] \\[' '{print "command: " $5; print "outcome: " $7}'
  command: clear cvconfig array_id=0
  outcome: 1]
