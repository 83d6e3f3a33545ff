pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.impl
import QtQuick.Layouts
import Varnis.App

// A menu entry that shows its key combination beside its title, in the platform's words.
MenuItem {
    id: item
    contentItem: RowLayout {
        spacing: 24
        // The control's own label, so that "&" mnemonics and "&&" read as they do elsewhere.
        IconLabel {
            Layout.fillWidth: true
            text: item.text
            font: item.font
            color: item.enabled ? item.palette.windowText : item.palette.placeholderText
            alignment: Qt.AlignLeft | Qt.AlignVCenter
        }
        Label {
            text: item.action ? Shell.shortcutText(item.action.shortcut) : ""
            color: item.palette.placeholderText
        }
    }
}
