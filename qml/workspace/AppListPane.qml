import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The apps: the account switcher, favourites, recently used and all apps.
Pane {
    id: pane
    padding: 0

    HoverHandler {
        onHoveredChanged: workspace.setPointerOverAppLists(hovered)
    }

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

        TextField {
            id: filter
            objectName: "appFilterField"
            Layout.fillWidth: true
            Layout.leftMargin: 8
            Layout.rightMargin: 8
            placeholderText: "Apps filtern"
            selectByMouse: true
            text: workspace.appFilter
            Accessible.name: "Apps filtern"
            onTextEdited: workspace.appFilter = text
            Keys.onEscapePressed: workspace.appFilter = ""
            Keys.onDownPressed: allList.forceActiveFocus()
        }

        CheckBox {
            Layout.leftMargin: 8
            text: "Apps aller Accounts"
            checked: workspace.showsAppsOfAllAccounts
            enabled: workspace.hasAccount
            onToggled: workspace.showsAppsOfAllAccounts = checked
        }

        Label {
            Layout.fillWidth: true
            Layout.margins: 10
            visible: text !== ""
            text: workspace.noMatchText
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
                model: workspace.allApps
                reuseItems: true
                keyNavigationEnabled: true
                activeFocusOnTab: true
                currentIndex: -1
                highlightMoveDuration: 0
                Accessible.name: "Alle Apps"
                // The keyboard's place in the list, visible while the list has focus.
                highlight: Rectangle {
                    visible: allList.activeFocus
                    color: "transparent"
                    border.color: palette.highlight
                    border.width: 2
                    radius: 3
                    z: 2
                }

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

                Keys.onReturnPressed: if (currentItem) workspace.selectApp(currentItem.appId)
                Keys.onSpacePressed: if (currentItem) workspace.selectApp(currentItem.appId)
            }
        }
    }
}
