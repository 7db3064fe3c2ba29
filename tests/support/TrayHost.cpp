// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// A minimal system tray host for tests: owns the tray selection of screen 0 and embeds every icon that
// asks to dock, printing "docked <window> <pid>" for each so a test can see who docked, and "undocked
// <window>" when one goes away.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

static xcb_atom_t atom(xcb_connection_t* c, const char* name)
{
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return result;
}

static unsigned windowPid(xcb_connection_t* c, xcb_window_t window, xcb_atom_t pidAtom)
{
    xcb_get_property_reply_t* reply =
        xcb_get_property_reply(c, xcb_get_property(c, 0, window, pidAtom, XCB_ATOM_CARDINAL, 0, 1), nullptr);
    unsigned pid = 0;
    if (reply && xcb_get_property_value_length(reply) == 4) {
        pid = *static_cast<uint32_t*>(xcb_get_property_value(reply));
    }
    std::free(reply);
    return pid;
}

int main()
{
    int screenNumber = 0;
    xcb_connection_t* c = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(c)) {
        std::fprintf(stderr, "TrayHost: no display\n");
        return 1;
    }
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    const xcb_window_t tray = xcb_generate_id(c);
    const uint32_t values[] = {screen->black_pixel,
                               XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, tray, screen->root, 0, 0, 200, 24, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    xcb_map_window(c, tray);

    char selectionName[32];
    std::snprintf(selectionName, sizeof selectionName, "_NET_SYSTEM_TRAY_S%d", screenNumber);
    const xcb_atom_t selection = atom(c, selectionName);
    const xcb_atom_t opcode = atom(c, "_NET_SYSTEM_TRAY_OPCODE");
    const xcb_atom_t manager = atom(c, "MANAGER");
    const xcb_atom_t pidAtom = atom(c, "_NET_WM_PID");
    const xcb_atom_t orientation = atom(c, "_NET_SYSTEM_TRAY_ORIENTATION");
    const uint32_t horizontal = 0;
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, tray, orientation, XCB_ATOM_CARDINAL, 32, 1, &horizontal);
    xcb_set_selection_owner(c, tray, selection, XCB_CURRENT_TIME);

    xcb_client_message_event_t announce = {};
    announce.response_type = XCB_CLIENT_MESSAGE;
    announce.format = 32;
    announce.window = screen->root;
    announce.type = manager;
    announce.data.data32[0] = XCB_CURRENT_TIME;
    announce.data.data32[1] = selection;
    announce.data.data32[2] = tray;
    xcb_send_event(c, 0, screen->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&announce));
    xcb_flush(c);
    std::printf("ready\n");
    std::fflush(stdout);

    int x = 0;
    while (xcb_generic_event_t* event = xcb_wait_for_event(c)) {
        if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE) {
            auto* message = reinterpret_cast<xcb_client_message_event_t*>(event);
            if (message->type == opcode && message->data.data32[1] == 0) {
                const xcb_window_t icon = message->data.data32[2];
                xcb_reparent_window(c, icon, tray, static_cast<int16_t>(x), 0);
                xcb_map_window(c, icon);
                x += 24;
                xcb_flush(c);
                std::printf("docked 0x%x %u\n", icon, windowPid(c, icon, pidAtom));
                std::fflush(stdout);
            }
        } else if ((event->response_type & 0x7f) == XCB_DESTROY_NOTIFY) {
            // An icon that goes away: the program hid it or quit.
            auto* destroyed = reinterpret_cast<xcb_destroy_notify_event_t*>(event);
            if (destroyed->event == tray && destroyed->window != tray) {
                std::printf("undocked 0x%x\n", destroyed->window);
                std::fflush(stdout);
            }
        }
        std::free(event);
    }
    return 0;
}
