pragma ComponentBehavior: Bound
import QtQuick

// Ctrl+1…9 for the sections in the order the sidebar shows, for a window without the menu bar.
Item {
    id: shortcuts
    signal sectionRequested(int position)

    Repeater {
        model: 9
        delegate: Item {
            id: slot
            required property int index
            Shortcut {
                sequence: "Ctrl+" + (slot.index + 1)
                onActivated: shortcuts.sectionRequested(slot.index)
            }
        }
    }
}
