import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The sections of the selected app, under their headings.
Pane {
    id: sidebar
    property var sections: []
    property string selectedSection
    signal sectionChosen(string raw)
    padding: 0

    ListView {
        id: list
        objectName: "sectionList"
        anchors.fill: parent
        model: sidebar.sections
        keyNavigationEnabled: true
        activeFocusOnTab: true
        clip: true
        Accessible.name: "Bereiche"

        delegate: Column {
            id: entry
            required property var modelData
            width: list.width

            Label {
                visible: entry.modelData.startsGroup
                leftPadding: 10
                topPadding: 10
                bottomPadding: 2
                text: entry.modelData.groupTitle
                font.bold: true
                color: palette.placeholderText
            }
            ItemDelegate {
                width: parent.width
                text: entry.modelData.controlTitle
                highlighted: entry.modelData.raw === sidebar.selectedSection
                Accessible.name: entry.modelData.title
                onClicked: sidebar.sectionChosen(entry.modelData.raw)
            }
        }
    }
}
