# fish completion for tarvex-cli. File arguments are completed with the names of the kind the
# command reads (extension in any case) and with folders; --dir takes folders only.

# Files below the token being completed whose extension is one of the arguments, and folders.
function __tarvex_files
    set -l token (commandline -ct)
    set -l pattern '\.('(string join '|' $argv)')$'
    for name in $token*
        if test -d $name
            echo $name/
        else if string match -qri -- $pattern $name
            echo $name
        end
    end
end

# The number of arguments after the command, not counting options and their values.
function __tarvex_cli_position
    set -l words (commandline -opc)
    set -l count 0
    set -l skip 0
    for word in $words[3..-1]
        if test $skip -eq 1
            set skip 0
        else if contains -- $word --dir --video-out --stills-out --subpictures-out --source-out --keys --max-cells --language --region --svg
            set skip 1
        else if not string match -q -- '-*' $word
            set count (math $count + 1)
        end
    end
    echo (math $count + 1)
end

function __tarvex_cli_argument
    __fish_seen_subcommand_from $argv[1]; or return 1
    test (__tarvex_cli_position) -eq $argv[2]
end

set -l commands open list hex details extract ifo disasm asm info verify play graph subpictures menus bitrate rip
complete -c tarvex-cli -f
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a open -d 'Open FILE and print its first page'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a list -d 'List records FIRST to END-1'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a hex -d 'Show record RECORD as a hex dump'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a details -d 'Decode record RECORD field by field'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a extract -d 'Demultiplex FILE into elementary-stream files'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a ifo -d 'Show the overview or one table of an IFO file'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a disasm -d 'Disassemble an IFO file into an IfoSource'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a asm -d 'Assemble an IfoSource into an IFO file'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a info -d 'Summarise a whole disc: titles, chapters, streams'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a verify -d 'Check a whole disc against its VOBs'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a play -d 'Run the navigation machine from first play'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a graph -d 'Print the navigation graph as Graphviz DOT'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a subpictures -d 'The sub-picture units of a title in their colours'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a menus -d 'Every menu as a picture with its buttons'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a bitrate -d 'Pack bytes per stream per interval of title time'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -a rip -d 'Copy a title in play order, with chapters'

complete -c tarvex-cli -l yes -d 'Answer Yes to every Yes/No question'
complete -c tarvex-cli -l no -d 'Answer No to every Yes/No question'
complete -c tarvex-cli -s h -l help -d 'Print the help and exit'
complete -c tarvex-cli -n "not __fish_seen_subcommand_from $commands" -l version -d 'Print the version and exit'

complete -c tarvex-cli -n '__tarvex_cli_argument open 1; or __tarvex_cli_argument list 1; or __tarvex_cli_argument hex 1; or __tarvex_cli_argument details 1' -a '(__tarvex_files vob m2p ifo sup)'
complete -c tarvex-cli -n '__tarvex_cli_argument extract 1' -a '(__tarvex_files vob m2p ifo)'
complete -c tarvex-cli -n '__tarvex_cli_argument ifo 1; or __tarvex_cli_argument disasm 1; or __tarvex_cli_argument asm 2' -a '(__tarvex_files ifo)'
complete -c tarvex-cli -n '__tarvex_cli_argument disasm 2; or __tarvex_cli_argument asm 1' -a '(__tarvex_files ini)'
complete -c tarvex-cli -n '__tarvex_cli_argument info 1; or __tarvex_cli_argument verify 1; or __tarvex_cli_argument play 1; or __tarvex_cli_argument graph 1; or __tarvex_cli_argument subpictures 1; or __tarvex_cli_argument menus 1; or __tarvex_cli_argument bitrate 1; or __tarvex_cli_argument rip 1' -a '(__tarvex_files iso)'

complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l audio -d 'Audio to *.M2A, *.MPA, *.AC3 or *.WAV'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l video -d 'Video to *.M2V or *.MPV'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l stills -d 'MPEG Stills'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l subpictures -d Sub-Pictures
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l disassemble -d 'Disassemble *.IFO file to *.INI file'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l dir -x -a '(__fish_complete_directories)' -d 'Folder for the output files'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l video-out -r -F -d 'Answer to the video file chooser'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l stills-out -r -F -d 'Answer to the stills chooser'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l subpictures-out -r -F -d 'Answer to the sub-picture chooser'
complete -c tarvex-cli -n '__fish_seen_subcommand_from extract' -l source-out -r -F -d 'Answer to the disassembly source chooser'

complete -c tarvex-cli -n '__fish_seen_subcommand_from list info verify play subpictures menus bitrate' -l json -d 'Print JSON'
complete -c tarvex-cli -n '__fish_seen_subcommand_from play' -l keys -x -d 'Keys pressed when playback waits (comma list)'
complete -c tarvex-cli -n '__fish_seen_subcommand_from play' -l registers -d 'Show the registers each command changed'
complete -c tarvex-cli -n '__fish_seen_subcommand_from play' -l max-cells -x -d 'End after this many cells'
complete -c tarvex-cli -n '__fish_seen_subcommand_from play' -l language -x -d 'Menu, audio and sub-picture language'
complete -c tarvex-cli -n '__fish_seen_subcommand_from play' -l region -x -a '1 2 3 4 5 6 7 8' -d 'The player region'
complete -c tarvex-cli -n '__fish_seen_subcommand_from graph' -l svg -r -F -d 'Also draw the graph as SVG'
complete -c tarvex-cli -n '__fish_seen_subcommand_from subpictures bitrate' -l title -x -d 'The title'
complete -c tarvex-cli -n '__fish_seen_subcommand_from subpictures' -l stream -x -d 'The declared sub-picture stream, 1-32'
complete -c tarvex-cli -n '__fish_seen_subcommand_from subpictures' -l display -x -a 'wide letterbox pan-scan' -d 'The form of a 16:9 title'
complete -c tarvex-cli -n '__fish_seen_subcommand_from subpictures menus' -l png -x -a '(__fish_complete_directories)' -d 'Folder for the PNG files'
complete -c tarvex-cli -n '__fish_seen_subcommand_from subpictures' -l vobsub -r -F -d 'Write BASE.idx and BASE.sub'
complete -c tarvex-cli -n '__fish_seen_subcommand_from bitrate' -l interval -x -d 'Seconds per interval'
complete -c tarvex-cli -n '__fish_seen_subcommand_from bitrate' -l svg -r -F -d 'Also draw the rates as SVG'
complete -c tarvex-cli -n '__fish_seen_subcommand_from verify' -l ifo-only -d 'Check the IFO files only'
complete -c tarvex-cli -n '__fish_seen_subcommand_from verify' -l list-checks -d 'List every check and exit'
complete -c tarvex-cli -n '__fish_seen_subcommand_from verify' -l mapfile -r -F -d 'Map the damage of a GNU ddrescue mapfile of the image'
complete -c tarvex-cli -n '__fish_seen_subcommand_from rip' -l title -x -d 'The title to rip'
complete -c tarvex-cli -n '__fish_seen_subcommand_from rip' -l angle -x -a '1 2 3 4 5 6 7 8 9' -d 'The angle of angle blocks'
complete -c tarvex-cli -n '__fish_seen_subcommand_from rip' -s o -l output -r -F -d 'Write the title to FILE (- for standard output)'
complete -c tarvex-cli -n '__fish_seen_subcommand_from rip' -l chapters -r -F -d 'Write the chapters to FILE'
complete -c tarvex-cli -n '__fish_seen_subcommand_from rip' -l chapter-format -x -a 'ogm ffmetadata matroska' -d 'Chapter file format'
