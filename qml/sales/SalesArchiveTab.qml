pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The reports kept on disk: reopen one into the table, or remove it after a question.
ColumnLayout {
    id: tab
    required property SalesViewModel model
    spacing: 6

    Label {
        objectName: "archiveEmptyText"
        Layout.fillWidth: true
        visible: !tab.model.hasArchive
        text: tab.model.archiveEmptyText
        wrapMode: Text.Wrap
        color: palette.placeholderText
    }
    Button {
        objectName: "archiveEmptyAction"
        visible: !tab.model.hasArchive
        text: tab.model.archiveActionTitle
        enabled: tab.model.canArchive
        onClicked: tab.model.startArchiveCurrentReport()
    }
    ListView {
        id: list
        objectName: "archiveList"
        Layout.fillWidth: true
        Layout.fillHeight: true
        visible: tab.model.hasArchive
        clip: true
        model: tab.model.archive
        keyNavigationEnabled: true
        activeFocusOnTab: true
        highlightMoveDuration: 0
        ScrollBar.vertical: ScrollBar {}
        Accessible.name: "Verlauf"
        // The list has the keys: Return reopens the chosen line, Delete asks to remove it.
        Keys.onReturnPressed: tab.model.startLoadFromArchiveAt(currentIndex)
        Keys.onEnterPressed: tab.model.startLoadFromArchiveAt(currentIndex)
        Keys.onDeletePressed: tab.model.requestRemovalAt(currentIndex)
        delegate: ItemDelegate {
            id: entry
            required property string fileName
            required property string title
            required property string detail
            required property string accessibleName
            required property int index
            objectName: "archiveEntry_" + index
            width: ListView.view.width
            highlighted: ListView.isCurrentItem
            Accessible.name: accessibleName
            onClicked: {
                list.currentIndex = index
                list.forceActiveFocus()
            }
            contentItem: RowLayout {
                spacing: 8
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 0
                    Label {
                        Layout.fillWidth: true
                        text: entry.title
                        elide: Text.ElideRight
                    }
                    Label {
                        Layout.fillWidth: true
                        text: entry.detail
                        elide: Text.ElideRight
                        font.pixelSize: Theme.smallSize
                        color: palette.placeholderText
                    }
                }
                Button {
                    objectName: "reopenArchived_" + entry.index
                    text: "Öffnen"
                    onClicked: tab.model.startLoadFromArchive(entry.fileName)
                }
                Button {
                    objectName: "removeArchived_" + entry.index
                    text: "Löschen …"
                    onClicked: tab.model.requestRemoval(entry.fileName)
                }
            }
        }
    }
}
