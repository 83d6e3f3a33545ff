pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import Varnis.Theme
import Varnis.App

// The sections of the selected app, under their headings, in the order Ctrl+1…9 count.
Pane {
    id: sidebar
    required property SectionHost host
    padding: 0

    ListView {
        id: list
        objectName: "sectionList"
        anchors.fill: parent
        model: sidebar.host.sidebar
        keyNavigationEnabled: true
        activeFocusOnTab: true
        clip: true
        highlightMoveDuration: 0
        Accessible.name: "Bereiche"
        Accessible.role: Accessible.List

        Keys.onReturnPressed: sidebar.host.choose(currentIndex)
        Keys.onSpacePressed: sidebar.host.choose(currentIndex)

        delegate: Column {
            id: entry
            required property int index
            required property string raw
            required property string controlTitle
            required property string groupTitle
            required property bool startsGroup
            required property bool isSelected
            required property bool isBuilt
            required property string note
            required property string badge
            required property string accessibleName
            width: ListView.view.width

            Label {
                visible: entry.startsGroup
                leftPadding: 10
                topPadding: 10
                bottomPadding: 2
                text: entry.groupTitle
                font.bold: true
                color: palette.placeholderText
            }
            ItemDelegate {
                objectName: "section_" + entry.raw
                width: parent.width
                text: entry.controlTitle
                highlighted: entry.isSelected
                focusPolicy: Qt.NoFocus
                opacity: entry.isBuilt ? 1.0 : 0.6
                Accessible.name: entry.accessibleName
                onClicked: {
                    entry.ListView.view.currentIndex = entry.index
                    sidebar.host.choose(entry.index)
                }
                // The keyboard's place in the list, visible while the list has the focus.
                Rectangle {
                    anchors.fill: parent
                    visible: entry.ListView.isCurrentItem && entry.ListView.view.activeFocus
                    color: "transparent"
                    border.color: entry.palette.highlight
                    border.width: 2
                    radius: 3
                }
                ToolTip.visible: hovered && entry.note !== ""
                ToolTip.text: entry.note
                Label {
                    anchors.right: parent.right
                    anchors.rightMargin: 10
                    anchors.verticalCenter: parent.verticalCenter
                    visible: entry.badge !== ""
                    text: entry.badge
                    font.pixelSize: Theme.captionSize - 1
                    color: palette.placeholderText
                    Accessible.ignored: true
                }
            }
        }
    }
}
