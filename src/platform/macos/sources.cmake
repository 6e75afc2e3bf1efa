# The sources of the back end, for the library on a Mac and for its tests elsewhere.
set(MACOS_SOURCES
    accent_color.mm
    accessibility.mm
    conversions.mm
    displays.mm
    element_observer.mm
    elements.mm
    event_monitor.mm
    hot_keys.mm
    local_keys.mm
    main_menu.mm
    menu_rows.mm
    mouse.mm
    notification_observer.mm
    open_panel.mm
    overlay_properties.mm
    own_application.mm
    preferences.mm
    reopen_requests.mm
    running_applications.mm
    services.mm
    single_instance.mm
    status_item.mm
    trust.mm
    window_list.mm
    workspace.mm)
list(TRANSFORM MACOS_SOURCES PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
