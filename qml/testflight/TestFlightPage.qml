pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// TestFlight of the app: groups with their testers, builds, the app's beta information and
// feedback, one tab each.
Item {
    id: page
    required property TestFlightViewModel model

    ColumnLayout {
        anchors.fill: parent
        spacing: 6

        TabBar {
            id: tabs
            objectName: "testFlightTabs"
            Layout.fillWidth: true
            currentIndex: page.model.selectedTab
            Repeater {
                model: page.model.tabTitles
                TabButton {
                    required property string modelData
                    required property int index
                    objectName: "testFlightTab_" + index
                    text: modelData
                    onClicked: page.model.selectedTab = index
                }
            }
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.statusMessage
            wrapMode: Text.Wrap
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: page.model.selectedTab
            BetaGroupsTab {
                model: page.model
            }
            BetaBuildsTab {
                model: page.model
            }
            BetaAppInfoTab {
                model: page.model
            }
            BetaFeedbackTab {
                model: page.model
            }
        }
    }
    // Beside the layout, not in it: a sheet takes no part in the page's arrangement.
    CreateGroupSheet {
        model: page.model
    }
    GroupSettingsSheet {
        model: page.model
    }
    AssignGroupsSheet {
        model: page.model
    }
    ImportTestersSheet {
        model: page.model
    }
    // A tester list dropped anywhere on the page goes the way of one chosen in the dialog.
    DropArea {
        objectName: "testerFileDropArea"
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            if (drop.hasUrls) {
                drop.accept(Qt.CopyAction)
                page.model.startPreviewImport(drop.urls[0])
            }
        }
    }
}
