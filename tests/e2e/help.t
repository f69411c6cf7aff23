help and ?: the usage text, verb help and object help.

  $ . "$TESTDIR/lib.sh"

  $ cv help > help.txt; echo "[$?]"; head -n 5 help.txt
  [0]
  Usage: [OPTION]
  help [command] [subcommand]            --  Print help message.
  ? [command] [subcommand]               --  Print help message.
  quit                                   --  Quit Corvane command line.
  show version [verbose]                 --  Display the software and driver versions.
  $ cmp usage.txt <(cv '?') && echo same
  same
  $ cv help | tail -n 3
                                         --  Clear the statistics of the paths, of the paths of the arrays,
                                         --  or of all paths.
  
  $ cvu help show
  Please input the sub command along with this command to obtain the help message.
  [0]
  $ cvu help show version
  show version [verbose]                 --  Display the software and driver versions.
                                         --  verbose also displays the product version.
  [0]
  $ cvu help show nothing
  Error: Input Option is not supported.
  [1]
  $ cvu help check status
  check status                           --  Check the status of paths and disks, the environment, the config and the HBAs.
  [0]
  $ cvu help genprkey
  genprkey                               --  Generate a persistent reservation key for the cluster.
  [0]
  $ cvu '?' quit
  quit                                   --  Quit Corvane command line.
  [0]
  $ cvu help help
  help [command] [subcommand]            --  Print help message.
  [0]
  $ cvu help '?'
  ? [command] [subcommand]               --  Print help message.
  [0]
  $ cvu help quit now
  Error: Invalid input!
   Usage:
  help [command] [subcommand]            --  Print help message.
  [1]
  $ cvu help show version verbose
  Error: Invalid input!
   Usage:
  help [command] [subcommand]            --  Print help message.
  [1]
  $ cvu help nothing
  Error: Input Option is not supported.
  <usage>
  [1]
  $ cvu help set tod_time
  set tod_time=<time>                    --  Set I/O timeout degrade time.
                                         --  time is in the range 60-2592000, unit is second.
                                         --  Default is 600.
  [0]
