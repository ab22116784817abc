# Where the files go when Kestrum is installed (`cmake --install`, and the package). The programs are in a folder of their
# own; that folder is the install folder the programs look into, and it shows the data of share/kestrum through links.

set(KESTRUM_PROGRAMS lib/kestrum)
set(KESTRUM_DATA share/kestrum)
set(packaging "${PROJECT_SOURCE_DIR}/packaging")
set(written "${PROJECT_BINARY_DIR}/packaging")

# kestrum_link(AT TARGET): a symbolic link below the prefix.
function(kestrum_link at target)
  install(CODE "
    set(link \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${at}\")
    cmake_path(GET link PARENT_PATH folder)
    file(MAKE_DIRECTORY \"\${folder}\")
    file(CREATE_LINK \"${target}\" \"\${link}\" SYMBOLIC)")
endfunction()

# kestrum_written_file(TEMPLATE NAME FOLDER): installs a text with the version in it, compressed.
function(kestrum_written_file template name folder)
  configure_file("${template}" "${written}/${name}" @ONLY)
  execute_process(COMMAND gzip -9nkf "${written}/${name}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${written}/${name}.gz" DESTINATION "${folder}")
endfunction()

install(DIRECTORY "${PROJECT_SOURCE_DIR}/install/" DESTINATION ${KESTRUM_DATA})
file(GLOB data RELATIVE "${PROJECT_SOURCE_DIR}/install" CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/install/*")
foreach(name IN LISTS data)
  kestrum_link(${KESTRUM_PROGRAMS}/${name} ../../${KESTRUM_DATA}/${name})
endforeach()
kestrum_link(${KESTRUM_PROGRAMS}/ffmpeg ../../bin/ffmpeg)
kestrum_link(bin/kestrum ../${KESTRUM_PROGRAMS}/kestrum)

# The menu in Impress, for every user of this machine.
set(extension lib/libreoffice/share/extensions/kestrum)
install(DIRECTORY "${KESTRUM_INSTALL_FOLDER}/impress/kestrum/" DESTINATION ${extension} PATTERN lib EXCLUDE)
install(TARGETS impress_component LIBRARY DESTINATION ${extension}/lib)

install(FILES "${packaging}/desktop/kestrum.desktop" DESTINATION share/applications)
install(FILES "${packaging}/desktop/kestrum.xml" DESTINATION share/mime/packages)
install(FILES "${packaging}/desktop/kestrum.thumbnailer" DESTINATION share/thumbnailers)
install(PROGRAMS "${packaging}/desktop/thumbnail" "${packaging}/desktop/on-desktop" DESTINATION ${KESTRUM_PROGRAMS})
install(DIRECTORY "${packaging}/icons/hicolor" DESTINATION share/icons)
install(FILES "${packaging}/icons/kestrum.svg" DESTINATION share/icons/hicolor/scalable/apps)
install(FILES "${packaging}/icons/application-x-kestrum.svg" DESTINATION share/icons/hicolor/scalable/mimetypes)

install(FILES "${packaging}/completion/kestrum.bash" DESTINATION share/bash-completion/completions RENAME kestrum)
install(FILES "${packaging}/completion/kestrum.zsh" DESTINATION share/zsh/vendor-completions RENAME _kestrum)
install(FILES "${packaging}/completion/kestrum.fish" DESTINATION share/fish/vendor_completions.d)
kestrum_written_file("${packaging}/man/kestrum.1.in" kestrum.1 share/man/man1)

foreach(name administration command-line recording-faults)
  install(FILES "${PROJECT_SOURCE_DIR}/docs/${name}.md" DESTINATION share/doc/kestrum)
endforeach()
install(FILES "${packaging}/debian/copyright" DESTINATION share/doc/kestrum)
install(FILES "${PROJECT_SOURCE_DIR}/samples/lecture.pptx" DESTINATION share/doc/kestrum/examples)
install(FILES "${packaging}/debian/lintian-overrides" DESTINATION share/lintian/overrides RENAME kestrum)
kestrum_written_file("${packaging}/debian/changelog.in" changelog share/doc/kestrum)
