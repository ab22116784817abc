#compdef kestrum
# Completion of kestrum for zsh. Checked against the program's own help by tests/commandline/ManualPage_test.cpp.
local decks='*.(#i)(odp|fodp|otp|sxi|ppt|pptx|pptm|pps|ppsx|ppsm|pot|potx|potm|key)'
local both='*.(#i)(odp|fodp|otp|sxi|ppt|pptx|pptm|pps|ppsx|ppsm|pot|potx|potm|key|ktr)'
local -a commands=(
  'record:record a lecture'
  'watch:open a presentation and record each show that is started'
  'attach:serve an Impress that is open already'
  'publish:make a folder with a web page'
  'configure:the settings'
  'devices:microphone and camera'
  'resolution:a screen resolution that suits recording'
  'info:what a package holds'
  'verify:what is wrong with a package'
  'help:the commands and their options'
  '--help:the commands and their options'
  '--version:the version'
)
if ((CURRENT == 2)); then
  _describe 'command' commands
  return
fi
local command=$words[2]
shift words
((CURRENT--))
case $command in
  record) _arguments '--from[begin at a slide]:number of the slide:' '--advance[seconds for each slide]:seconds:' \
    "1:presentation:_files -g '$decks'" ;;
  watch) _arguments "1:presentation:_files -g '$decks'" ;;
  attach) _arguments '--pipe[where the office listens]:name:' '--command[a command of the menu to begin with]:id:' \
    '--automatic[only if shows are recorded automatically]' ;;
  publish) _arguments '1:format:(mp4)' '--size[size of the picture]:WxH:(1920x1080 1280x720 1024x768)' \
    '--bitrate[kbit/s of the picture]:kbit/s:' \
    '--webcam[place of the webcam picture]:place:(top-right bottom-right top-left bottom-left none)' \
    '--json[one line of JSON for each package]' "*:presentation or package:_files -g '$both'" ;;
  configure) _arguments "1:presentation or package:_files -g '$both'" ;;
  devices) _arguments '--list[print the devices]' '--json[as JSON]' "1:presentation or package:_files -g '$both'" ;;
  info) _arguments '--json[as JSON]' '1:package:_files -g "*.ktr"' ;;
  verify) _arguments '--repair[mend what can be mended]' '--json[as JSON]' '1:package:_files -g "*.ktr"' ;;
esac
