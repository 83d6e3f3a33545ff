import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// The apps: the account switcher, favourites, recently used and all apps.
Pane {
    id: pane
    padding: 0

    HoverHandler {
        onHoveredChanged: Shell.workspace.setPointerOverAppLists(hovered)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 4

        Loader {
            Layout.fillWidth: true
            Layout.margins: 8
            active: Shell.workspace.hasAccount
            visible: active
            sourceComponent: AccountSwitcher {}
        }

        TextField {
            id: filter
            objectName: "appFilterField"
            Layout.fillWidth: true
            Layout.leftMargin: 8
            Layout.rightMargin: 8
            placeholderText: "Apps filtern"
            selectByMouse: true
            text: Shell.workspace.appFilter
            Accessible.name: "Apps filtern"
            onTextEdited: Shell.workspace.appFilter = text
            Keys.onEscapePressed: Shell.workspace.appFilter = ""
            Keys.onDownPressed: allList.forceActiveFocus()
        }

        CheckBox {
            Layout.leftMargin: 8
            text: "Apps aller Accounts"
            checked: Shell.workspace.showsAppsOfAllAccounts
            enabled: Shell.workspace.hasAccount
            onToggled: Shell.workspace.showsAppsOfAllAccounts = checked
        }

        Label {
            Layout.fillWidth: true
            Layout.margins: 10
            visible: text !== ""
            text: Shell.workspace.noMatchText
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }

        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true

            ListView {
                id: allList
                objectName: "allAppsList"
                model: Shell.workspace.allApps
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
}
