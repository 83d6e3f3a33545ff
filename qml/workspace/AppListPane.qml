import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// The apps: the account switcher, favourites, recently used and all apps.
Rectangle {
    id: pane
    color: palette.window
    // False until the window has shown its first frame: the controls above the list come a frame
    // later, so that the apps reach the screen first.
    property bool settled: true

    HoverHandler {
        onHoveredChanged: Shell.workspace.setPointerOverAppLists(hovered)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 4

        Loader {
            Layout.fillWidth: true
            Layout.margins: 8
            active: Shell.workspace.hasAccount && pane.settled
            visible: Shell.workspace.hasAccount
            source: "AccountSwitcher.qml"
        }

        Loader {
            Layout.fillWidth: true
            Layout.leftMargin: 8
            Layout.rightMargin: 8
            active: pane.settled
            sourceComponent: TextField {
                objectName: "appFilterField"
                placeholderText: "Apps filtern"
                selectByMouse: true
                text: Shell.workspace.appFilter
                Accessible.name: "Apps filtern"
                onTextEdited: Shell.workspace.appFilter = text
                Keys.onEscapePressed: Shell.workspace.appFilter = ""
            }
            // A line field leaves Down to its parent: it moves on to the list.
            Keys.onDownPressed: allList.forceActiveFocus()
        }

        Loader {
            Layout.leftMargin: 8
            active: pane.settled
            sourceComponent: CheckBox {
                text: "Apps aller Accounts"
                checked: Shell.workspace.showsAppsOfAllAccounts
                enabled: Shell.workspace.hasAccount
                onToggled: Shell.workspace.showsAppsOfAllAccounts = checked
            }
        }

        // Sales and finance are the account's, not an app's: one entry above the apps.
        Loader {
            Layout.fillWidth: true
            active: pane.settled
            sourceComponent: ItemDelegate {
                objectName: "reportsEntry"
                text: Shell.workspace.reportsTitle
                highlighted: Shell.workspace.showsReports
                Accessible.name: Shell.workspace.reportsTitle
                onClicked: Shell.workspace.showReports()
                Keys.onReturnPressed: Shell.workspace.showReports()
                Keys.onSpacePressed: Shell.workspace.showReports()
            }
        }

        Label {
            Layout.fillWidth: true
            Layout.margins: 10
            visible: text !== ""
            text: Shell.workspace.noMatchText
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }

        // A list with one scroll bar of its own rather than a scroll view with two: the first frame
        // pays for every control.
        ListView {
                id: allList
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                ScrollBar.vertical: ScrollBar {}
                objectName: "allAppsList"
                model: Shell.workspace.allApps
                // Only the rows on screen are made; the rest as they scroll in.
                cacheBuffer: 0
                reuseItems: true
                keyNavigationEnabled: true
                activeFocusOnTab: true
                currentIndex: -1
                highlightMoveDuration: 0
                Accessible.name: "Alle Apps"

                header: Column {
                    width: parent ? parent.width : 0
                    AppGroup {
                        width: parent.width
                        title: "Favoriten"
                        model: Shell.workspace.favoriteApps
                    }
                    AppGroup {
                        width: parent.width
                        title: "Zuletzt verwendet"
                        model: Shell.workspace.recentApps
                    }
                    Label {
                        leftPadding: 10
                        topPadding: 8
                        bottomPadding: 2
                        text: Shell.workspace.allAppsTitle
                        font.bold: true
                        color: palette.placeholderText
                    }
                }

                delegate: AppRow {
                    width: ListView.view.width
                }

                Keys.onReturnPressed: Shell.workspace.selectAppAt(currentIndex)
                Keys.onSpacePressed: Shell.workspace.selectAppAt(currentIndex)
        }
    }
}
