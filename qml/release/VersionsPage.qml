import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The versions of the app with their state and build.
ColumnLayout {
    id: page
    required property var model
    spacing: 6

    RowLayout {
        Layout.fillWidth: true
        visible: page.model.errorMessage !== ""
        Label {
            Layout.fillWidth: true
            text: page.model.errorMessage
            color: "#8a1c1c"
            wrapMode: Text.Wrap
        }
        Button {
            objectName: "retryVersionsButton"
            text: page.model.retryLabel
            enabled: !page.model.isLoading
            onClicked: page.model.retry()
        }
    }
    BusyIndicator {
        visible: page.model.isLoading
        running: visible
    }
    Label {
        visible: !page.model.isLoading && page.model.isEmpty && page.model.errorMessage === ""
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
            required property string versionString
            required property string stateName
            required property string buildText
            required property string createdText
            width: list.width
            // Long state names elide instead of pushing the build off the row.
            Accessible.name: "Version " + versionString + ", " + stateName + ", " + buildText
            contentItem: RowLayout {
                Label {
                    text: version.versionString
                    font.bold: true
                    Layout.preferredWidth: 80
                }
                Label {
                    text: version.stateName
                    Layout.preferredWidth: 220
                    Layout.maximumWidth: 220
                    elide: Text.ElideRight
                }
                Label {
                    text: version.buildText
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                }
                Label {
                    text: version.createdText
                    color: palette.placeholderText
                    elide: Text.ElideRight
                }
            }
        }
    }
}
