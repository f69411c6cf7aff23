The prompt: the counter, blank and rejected lines, splitting, quit and end of input.

  $ . "$TESTDIR/lib.sh"

The counter starts at 0 and advances after each dispatched line, not after
blank or rejected ones:

  $ prompt "show version" "" "show nothing" "quit"
  
  Corvane CLI #0 >Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  
  Corvane CLI #1 >
  Corvane CLI #1 >Error: Input Option is not supported.
  <usage>
  
  Corvane CLI #2 >[0]
  $ prompt "a b c d e f g h" "help show version" "quit"
  
  Corvane CLI #0 >Error: Input Option is not supported.
  <usage>
  
  Corvane CLI #0 >show version [verbose]                 --  Display the software and driver versions.
                                         --  verbose also displays the product version.
  
  Corvane CLI #1 >[0]
  $ prompt "show aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa" "quit"
  
  Corvane CLI #0 >Error: Input Option is not supported.
  <usage>
  
  Corvane CLI #0 >[0]

Runs of blanks make no empty tokens; a line of blanks is an empty command:

  $ prompt "  show    version  " "   " "quit"
  
  Corvane CLI #0 >Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  
  Corvane CLI #1 >Error: Input Option is not supported.
  <usage>
  
  Corvane CLI #2 >[0]

A line over 255 characters is refused; one of 255 is taken:

  $ prompt "help $(printf 'x%.0s' $(seq 251))" "quit" | sed -n 1,3p
  
  Corvane CLI #0 >Error: Invalid input!
  <usage>
  $ prompt "help $(printf 'x%.0s' $(seq 250))" "quit" | sed -n 1,3p
  
  Corvane CLI #0 >Error: Input Option is not supported.
  <usage>

After "supportarraylist" the rest of the line is one argument, so help sees
three words here, not five:

  $ prompt "help supportarraylist a b c" "help show a b c" "quit"
  
  Corvane CLI #0 >Error: Input Option is not supported.
  <usage>
  
  Corvane CLI #1 >Error: Invalid input!
   Usage:
  help [command] [subcommand]            --  Print help message.
  
  Corvane CLI #2 >[0]

End of input ends the session like quit; a last line without its newline
is run first:

  $ printf 'show version\n' | cv; echo "[$?]"
  
  Corvane CLI #0 >Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  
  Corvane CLI #1 >
  [0]
  $ printf 'show version' | cv; echo "[$?]"
  
  Corvane CLI #0 >Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  
  Corvane CLI #1 >
  [0]

Ctrl-C at the prompt prints a newline and ends the process with status 0:

  $ mkfifo keys
  $ "$CVADM_SIM" < keys > ctrlc.txt & pid=$!
  $ exec 3> keys
  $ for i in $(seq 50); do grep -q '#0 >' ctrlc.txt && break; sleep 0.1; done
  $ kill -INT $pid; wait $pid; echo "[$?]"
  [0]
  $ exec 3>&-
  $ cat ctrlc.txt
  
  Corvane CLI #0 >
