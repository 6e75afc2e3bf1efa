# SPDX-License-Identifier: MIT
# The sources of the back end by folder, for the libraries on a Mac and for their tests elsewhere.
set(MACOS_FOLDERS objects windows input shell)
set(MACOS_objects conversions.mm notification_observer.mm)
set(MACOS_windows accessibility.mm displays.mm element_observer.mm elements.mm late_frames.mm running_applications.mm
                  window_list.mm workspace.mm)
set(MACOS_input event_monitor.mm hot_keys.mm local_keys.mm mouse.mm)
set(MACOS_shell accent_color.mm command_channel.mm main_menu.mm menu_rows.mm open_panel.mm overlay_properties.mm
                own_application.mm preferences.mm reopen_requests.mm services.mm single_instance.mm status_item.mm trust.mm)
set(MACOS_SOURCES "")
foreach(folder ${MACOS_FOLDERS})
    list(TRANSFORM MACOS_${folder} PREPEND ${CMAKE_CURRENT_LIST_DIR}/${folder}/)
    list(APPEND MACOS_SOURCES ${MACOS_${folder}})
endforeach()
