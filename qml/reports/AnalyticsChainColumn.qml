pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// One link of the analytics chain: its heading, its list, and what went wrong loading it.
ColumnLayout {
    id: column
    required property string level
    required property string heading
    required property RowListModel rows
    property string errorText: ""
    property bool busy: false
    signal chosen(string itemId)
    // The keyboard chooses by position: Return or Space on the current row.
    signal chosenRow(int row)
    spacing: 2

    RowLayout {
        Layout.fillWidth: true
        Label {
            Layout.fillWidth: true
            text: column.heading
            font.bold: true
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }
        BusyIndicator {
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
            visible: column.busy
            running: visible
        }
    }
    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: column.errorText
        color: Theme.negative
        font.pixelSize: Theme.captionSize
        wrapMode: Text.Wrap
    }
    ListView {
        id: list
        objectName: "analytics_" + column.level + "List"
        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        model: column.rows
        activeFocusOnTab: true
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        Accessible.name: column.heading
        Accessible.role: Accessible.List
        Keys.onReturnPressed: column.chosenRow(currentIndex)
        Keys.onSpacePressed: column.chosenRow(currentIndex)
        delegate: ItemDelegate {
            id: entry
            required property string itemId
            required property string title
            required property string detail
            required property bool isSelected
            required property int index
            objectName: "analytics_" + column.level + "_" + itemId
            width: list.width
            highlighted: isSelected
            focusPolicy: Qt.NoFocus
            Accessible.name: title + ", " + detail
            onClicked: {
                list.currentIndex = index
                list.forceActiveFocus()
                column.chosen(itemId)
            }
            // The keyboard's place in the list, visible while the list has the focus.
            Rectangle {
                anchors.fill: parent
                visible: entry.ListView.isCurrentItem && list.activeFocus
                color: "transparent"
                border.color: entry.palette.highlight
                border.width: 2
                radius: 3
            }
            contentItem: ColumnLayout {
                spacing: 0
                Label {
                    Layout.fillWidth: true
                    text: entry.title
                    font.bold: true
                    elide: Text.ElideRight
                }
                Label {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: entry.detail
                    font.pixelSize: Theme.captionSize
                    color: palette.placeholderText
                    elide: Text.ElideRight
                }
            }
        }
    }
}
