# What is installed where. All paths are below the prefix given to `cmake --install`.

# Only what is named below is installed, so nothing else must be built for it.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

# The programs look for their helpers here, relative to the parent of their own folder.
set(SELA_HELPER_DIR libexec/sela-share)
set(SELA_APPLICATION_ID xyz.sela.share)

install(TARGETS sela-share sela-vault RUNTIME DESTINATION bin)
install(TARGETS sela-media sela-media-video sela-share-service RUNTIME DESTINATION ${SELA_HELPER_DIR})
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/locale DESTINATION share)

# The types of file that desktops offer "Add to Sela" for, as each of their files lists them.
set(resources ${CMAKE_SOURCE_DIR}/resources)
set(configured ${CMAKE_BINARY_DIR}/desktop)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${resources}/desktop/mime-types.txt)
file(STRINGS ${resources}/desktop/mime-types.txt types REGEX "^[a-z]")
list(JOIN types ";" SELA_MIME_TYPES)
string(APPEND SELA_MIME_TYPES ";")
list(TRANSFORM types REPLACE "(.+)" "    <mediatype>\\1</mediatype>\n" OUTPUT_VARIABLE elements)
string(CONCAT SELA_MEDIA_TYPES ${elements})

# sela_install_desktop_file(TEMPLATE FOLDER NAME): installs resources/desktop/TEMPLATE.in with its variables filled in.
function(sela_install_desktop_file template folder name)
  configure_file(${resources}/desktop/${template}.in ${configured}/${template} @ONLY)
  install(FILES ${configured}/${template} DESTINATION ${folder} RENAME ${name})
endfunction()

sela_install_desktop_file(application.desktop share/applications ${SELA_APPLICATION_ID}.desktop)
sela_install_desktop_file(application.metainfo.xml share/metainfo ${SELA_APPLICATION_ID}.metainfo.xml)
sela_install_desktop_file(servicemenu.desktop share/kio/servicemenus ${SELA_APPLICATION_ID}.desktop)
sela_install_desktop_file(sendto.desktop share/Thunar/sendto ${SELA_APPLICATION_ID}.desktop)
install(FILES ${resources}/desktop/nautilus.py
        DESTINATION share/nautilus-python/extensions RENAME sela-share.py)
install(FILES ${resources}/desktop/purpose/metadata.json
        DESTINATION share/kpackage/Purpose/${SELA_APPLICATION_ID})
install(PROGRAMS ${resources}/desktop/purpose/main.py
        DESTINATION share/kpackage/Purpose/${SELA_APPLICATION_ID}/contents/code)
install(FILES ${resources}/desktop/icon.svg
        DESTINATION share/icons/hicolor/scalable/apps RENAME ${SELA_APPLICATION_ID}.svg)

# sela_install_service(TEMPLATE PLACE): installs a file that starts a program by its absolute path, which only the
# installation knows.
function(sela_install_service template place)
  install(CODE "
    set(SELA_HELPER_DIR ${SELA_HELPER_DIR})
    set(service \${CMAKE_INSTALL_PREFIX}/${place})
    configure_file(${resources}/${template}.in \$ENV{DESTDIR}\${service} @ONLY)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \${service})")
endfunction()

sela_install_service(desktop/bus.service share/dbus-1/services/${SELA_APPLICATION_ID}.service)
# Systemd's unit for the user, which is not enabled.
sela_install_service(systemd/sela-vault-import.service lib/systemd/user/sela-vault-import.service)

# sela_install_compressed(FILE FOLDER): without a timestamp, so that the build is reproducible.
find_program(GZIP gzip REQUIRED)
set(compressed_files "")
function(sela_install_compressed file folder)
  cmake_path(GET file FILENAME name)
  set(compressed ${CMAKE_BINARY_DIR}/compressed/${name}.gz)
  add_custom_command(
    OUTPUT ${compressed}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/compressed
    COMMAND ${GZIP} -9nc ${file} > ${compressed}
    DEPENDS ${file}
    VERBATIM)
  install(FILES ${compressed} DESTINATION ${folder})
  set(compressed_files ${compressed_files} ${compressed} PARENT_SCOPE)
endfunction()

set(manuals ${CMAKE_BINARY_DIR}/manuals)
sela_install_compressed(${manuals}/sela-share.1 share/man/man1)
sela_install_compressed(${manuals}/sela-vault.1 share/man/man1)
sela_install_compressed(${resources}/man/sela-media.8 share/man/man8)
sela_install_compressed(${resources}/package/changelog share/doc/sela-share)
add_custom_target(sela_compressed ALL DEPENDS ${compressed_files})
add_dependencies(sela_compressed sela_manuals)

foreach(program sela-share sela-vault)
  install(FILES ${manuals}/${program}.bash
          DESTINATION share/bash-completion/completions RENAME ${program})
  install(FILES ${manuals}/${program}.fish DESTINATION share/fish/vendor_completions.d)
  install(FILES ${manuals}/_${program} DESTINATION share/zsh/vendor-completions)
endforeach()

install(FILES README.md ${resources}/package/copyright DESTINATION share/doc/sela-share)
install(DIRECTORY docs DESTINATION share/doc/sela-share)
