pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The versions of the app with their state and build.
ColumnLayout {
    id: page
    required property VersionsListViewModel model
    spacing: 6

    RowLayout {
        Layout.fillWidth: true
        visible: page.model.errorMessage !== ""
        Label {
            Layout.fillWidth: true
            text: page.model.errorMessage
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        Button {
            objectName: "retryVersionsButton"
            text: "Erneut versuchen"
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
            required property string detailText
            required property string accessibleName
            width: list.width
            Accessible.name: accessibleName
            // Two lines, so that a narrow window elides text instead of hiding the build.
            contentItem: ColumnLayout {
                spacing: 2
                RowLayout {
                    spacing: 12
                    Label {
                        text: version.versionString
                        font.bold: true
                    }
                    Label {
                        Layout.fillWidth: true
                        text: version.stateName
                        elide: Text.ElideRight
                    }
                }
                Label {
                    Layout.fillWidth: true
                    text: version.detailText
                    color: palette.placeholderText
                    elide: Text.ElideRight
                }
            }
        }
    }
}
