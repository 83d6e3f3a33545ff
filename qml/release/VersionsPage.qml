import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The versions of the app with their state and build.
ColumnLayout {
    id: page
    required property var model
    spacing: 6

    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: page.model.errorMessage
        color: "#8a1c1c"
        wrapMode: Text.Wrap
    }
    BusyIndicator {
        visible: page.model.isLoading
        running: visible
    }
    Label {
        visible: !page.model.isLoading && page.model.versions.length === 0 && page.model.errorMessage === ""
        text: page.model.emptyText
        color: palette.placeholderText
    }
    ListView {
        id: list
        objectName: "versionList"
        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        model: page.model.versions
        activeFocusOnTab: true
        keyNavigationEnabled: true
        Accessible.name: "Versionen"
        delegate: ItemDelegate {
            id: version
            required property var modelData
            width: list.width
            Accessible.name: "Version " + modelData.versionString + ", " + modelData.stateName + ", " + modelData.buildText
            contentItem: RowLayout {
                Label {
                    text: version.modelData.versionString
                    font.bold: true
                    Layout.preferredWidth: 80
                }
                Label {
                    text: version.modelData.stateName
                    Layout.preferredWidth: 220
                }
                Label {
                    text: version.modelData.buildText
                    Layout.fillWidth: true
                }
                Label {
                    text: version.modelData.createdText
                    color: palette.placeholderText
                }
            }
        }
    }
}
