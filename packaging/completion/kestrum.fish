# Completion of kestrum for fish. Checked against the program's own help by tests/commandline/ManualPage_test.cpp.
function __kestrum_at
    __fish_seen_subcommand_from $argv
end
complete -c kestrum -n __fish_use_subcommand -f -a record -d 'Record a lecture'
complete -c kestrum -n __fish_use_subcommand -f -a watch -d 'Open a presentation and record each show'
complete -c kestrum -n __fish_use_subcommand -f -a attach -d 'Serve an Impress that is open already'
complete -c kestrum -n __fish_use_subcommand -f -a publish -d 'Make a folder with a web page'
complete -c kestrum -n __fish_use_subcommand -f -a configure -d 'The settings'
complete -c kestrum -n __fish_use_subcommand -f -a devices -d 'Microphone and camera'
complete -c kestrum -n __fish_use_subcommand -f -a resolution -d 'A screen resolution that suits recording'
complete -c kestrum -n __fish_use_subcommand -f -a info -d 'What a package holds'
complete -c kestrum -n __fish_use_subcommand -f -a verify -d 'What is wrong with a package'
complete -c kestrum -n __fish_use_subcommand -f -a help -d 'The commands and their options'
complete -c kestrum -n __fish_use_subcommand -l version -d 'The version'
complete -c kestrum -n __fish_use_subcommand -l help -d 'The commands and their options'
complete -c kestrum -n '__kestrum_at record' -l from -x -d 'Begin at a slide'
complete -c kestrum -n '__kestrum_at record' -l advance -x -d 'Seconds for each slide'
complete -c kestrum -n '__kestrum_at attach' -l pipe -x -d 'Where the office listens'
complete -c kestrum -n '__kestrum_at attach' -l command -x -d 'A command of the menu to begin with'
complete -c kestrum -n '__kestrum_at attach' -l automatic -d 'Only if shows are recorded automatically'
complete -c kestrum -n '__kestrum_at publish; and not __kestrum_at mp4' -f -a mp4
complete -c kestrum -n '__kestrum_at publish' -l size -x -a '1920x1080 1280x720 1024x768' -d 'Size of the picture'
complete -c kestrum -n '__kestrum_at publish' -l bitrate -x -d 'kbit/s of the picture'
complete -c kestrum -n '__kestrum_at publish' -l webcam -x -a 'top-right bottom-right top-left bottom-left none' \
    -d 'Place of the webcam picture'
complete -c kestrum -n '__kestrum_at devices' -l list -d 'Print the devices'
complete -c kestrum -n '__kestrum_at verify' -l repair -d 'Mend what can be mended'
complete -c kestrum -n '__kestrum_at publish devices info verify' -l json -d 'As JSON'
