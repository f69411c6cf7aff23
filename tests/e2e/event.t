`show event`: the key events of the driver's kernel log, each shown once,
oldest first.

  $ . "$TESTDIR/lib.sh"

Without a kernel log index the events cannot be brought up to date: a
warning, then the (empty) event log as it stands:

  $ cvu show event
  Warning: Failed to read the new events of the kernel log; the events recorded so far are shown.
  There is no event.
  [0]

  $ klog_rotate 1
  $ klog "[2026-11-23 10:00:00][mpx][INFO] probe done" \
  >      "[2026-11-23 10:00:01][mpx][EVENT][core][42][11][disk3][7]link down" \
  >      "not a log line [EVENT]"
  $ klog_event "2026-11-23 10:00:09" 10 disk3 7 "link up"
  $ klog_event "2026-11-23 10:01:00" 99 hba0 1 2 "unknown event"
  $ cvu show event
  --------------------------------------------------------------------------------
  Time                 Event                Object  Number  Number2  Message
  --------------------------------------------------------------------------------
  2026-11-23 10:00:01  Path becomes failed  disk3   7       -        link down
  2026-11-23 10:00:09  Path becomes normal  disk3   7       -        link up
  2026-11-23 10:01:00  99                   hba0    1       2        unknown event
  --------------------------------------------------------------------------------
  [0]

Nothing new in the kernel log: nothing is added, the same three events show:

  $ cvu show event count=3
  --------------------------------------------------------------------------------
  Time                 Event                Object  Number  Number2  Message
  --------------------------------------------------------------------------------
  2026-11-23 10:00:01  Path becomes failed  disk3   7       -        link down
  2026-11-23 10:00:09  Path becomes normal  disk3   7       -        link up
  2026-11-23 10:01:00  99                   hba0    1       2        unknown event
  --------------------------------------------------------------------------------
  [0]
  $ wc -l < "$CVADM_ROOT/opt/Corvane/log/event_log"
  3

A new event after the recorded ones is added once; count= keeps the newest:

  $ klog_event "2026-11-23 10:02:00" 12 disk4 250 "latency 250 ms"
  $ cvu show event count=2
  ------------------------------------------------------------------------------
  Time                 Event             Object  Number  Number2  Message
  ------------------------------------------------------------------------------
  2026-11-23 10:01:00  99                hba0    1       2        unknown event
  2026-11-23 10:02:00  I/O high latency  disk4   250     -        latency 250 ms
  ------------------------------------------------------------------------------
  [0]
  $ cvu show event count=1
  ------------------------------------------------------------------------------
  Time                 Event             Object  Number  Number2  Message
  ------------------------------------------------------------------------------
  2026-11-23 10:02:00  I/O high latency  disk4   250     -        latency 250 ms
  ------------------------------------------------------------------------------
  [0]

After the driver moves to the next file, every key event of it is taken:

  $ klog_rotate 2
  $ klog_event "2026-11-23 11:00:00" 7 path5 5 "physical path failed"
  $ cvu show event count=3
  ------------------------------------------------------------------------------------------------
  Time                 Event                         Object  Number  Number2  Message
  ------------------------------------------------------------------------------------------------
  2026-11-23 10:01:00  99                            hba0    1       2        unknown event
  2026-11-23 10:02:00  I/O high latency              disk4   250     -        latency 250 ms
  2026-11-23 11:00:00  Physical path becomes failed  path5   5       -        physical path failed
  ------------------------------------------------------------------------------------------------
  [0]
  $ cvu show event
  ------------------------------------------------------------------------------------------------
  Time                 Event                         Object  Number  Number2  Message
  ------------------------------------------------------------------------------------------------
  2026-11-23 10:00:01  Path becomes failed           disk3   7       -        link down
  2026-11-23 10:00:09  Path becomes normal           disk3   7       -        link up
  2026-11-23 10:01:00  99                            hba0    1       2        unknown event
  2026-11-23 10:02:00  I/O high latency              disk4   250     -        latency 250 ms
  2026-11-23 11:00:00  Physical path becomes failed  path5   5       -        physical path failed
  ------------------------------------------------------------------------------------------------
  [0]

count takes 1 to 10000; other values and other words get the usage:

  $ usage_of event show event count=0
  Error: Invalid input!
   Usage:
  show event [count=<number>]            --  Display the key events of the driver.
                                         --  count limits the display to the latest events.
  [1]
  $ refusals <<'CASES'
  > show event count=10001
  > show event count=
  > show event count=abc
  > show event count=-1
  > show event number=3
  > show event count=1 count=2
  > CASES
  [1] show event count=10001: Error: Invalid input! |  Usage: | show event [count=<number>]            --  Display the key events of the driver. |                                        --  count limits the display to the latest events.
  [1] show event count=: Error: Invalid input! |  Usage: | show event [count=<number>]            --  Display the key events of the driver. |                                        --  count limits the display to the latest events.
  [1] show event count=abc: Error: Invalid input! |  Usage: | show event [count=<number>]            --  Display the key events of the driver. |                                        --  count limits the display to the latest events.
  [1] show event count=-1: Error: Invalid input! |  Usage: | show event [count=<number>]            --  Display the key events of the driver. |                                        --  count limits the display to the latest events.
  [1] show event number=3: Error: Invalid input! |  Usage: | show event [count=<number>]            --  Display the key events of the driver. |                                        --  count limits the display to the latest events.
  [1] show event count=1 count=2: Error: Invalid input! |  Usage: | show event [count=<number>]            --  Display the key events of the driver. |                                        --  count limits the display to the latest events.
  $ cvu show event count=10000
  ------------------------------------------------------------------------------------------------
  Time                 Event                         Object  Number  Number2  Message
  ------------------------------------------------------------------------------------------------
  2026-11-23 10:00:01  Path becomes failed           disk3   7       -        link down
  2026-11-23 10:00:09  Path becomes normal           disk3   7       -        link up
  2026-11-23 10:01:00  99                            hba0    1       2        unknown event
  2026-11-23 10:02:00  I/O high latency              disk4   250     -        latency 250 ms
  2026-11-23 11:00:00  Physical path becomes failed  path5   5       -        physical path failed
  ------------------------------------------------------------------------------------------------
  [0]
