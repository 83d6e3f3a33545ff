import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The apps: the account switcher, favourites, recently used and all apps.
Pane {
    id: pane
    padding: 0

    ColumnLayout {
        anchors.fill: parent
        spacing: 4

        Loader {
            Layout.fillWidth: true
            Layout.margins: 8
            active: workspace.hasAccount
            visible: active
            sourceComponent: AccountSwitcher {}
        }

        CheckBox {
            Layout.leftMargin: 8
            text: "Apps aller Accounts"
            checked: workspace.showsAppsOfAllAccounts
            enabled: workspace.hasAccount
            onToggled: workspace.showsAppsOfAllAccounts = checked
        }

        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true

            ListView {
                id: allList
                objectName: "allAppsList"
                model: workspace.allApps
                reuseItems: true
                keyNavigationEnabled: true
                activeFocusOnTab: true
                currentIndex: -1
                Accessible.name: "Alle Apps"

                header: Column {
                    width: allList.width
                    AppGroup {
                        width: parent.width
                        title: "Favoriten"
                        model: workspace.favoriteApps
                    }
                    AppGroup {
                        width: parent.width
                        title: "Zuletzt verwendet"
                        model: workspace.recentApps
                    }
                    Label {
                        leftPadding: 10
                        topPadding: 8
                        bottomPadding: 2
                        text: workspace.allAppsTitle
                        font.bold: true
                        color: palette.placeholderText
                    }
                }

                delegate: AppRow {
                    width: allList.width
                }

                Keys.onReturnPressed: {
                    if (currentItem)
                        workspace.selectApp(currentItem.appId)
                }
            }
        }
    }
}
