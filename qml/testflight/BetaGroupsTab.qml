pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The groups of the app, and the testers of the chosen group beside them.
RowLayout {
    id: tab
    required property TestFlightViewModel model
    spacing: 8

    ColumnLayout {
        Layout.fillHeight: true
        Layout.preferredWidth: 260
        Layout.maximumWidth: 320
        spacing: 4

        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: tab.model.groupsError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        BusyIndicator {
            visible: tab.model.isLoadingGroups
            running: visible
        }
        Button {
            objectName: "createGroupButton"
            text: "Neue Gruppe …"
            onClicked: tab.model.beginCreatingGroup()
        }
        ListView {
            id: groupList
            objectName: "groupList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: tab.model.groups
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Gruppen"
            delegate: ItemDelegate {
                id: group
                required property string groupId
                required property string name
                required property string kindText
                required property string detailText
                required property bool isSelected
                required property string accessibleName
                objectName: "group_" + groupId
                width: groupList.width
                highlighted: isSelected
                Accessible.name: accessibleName
                onClicked: tab.model.selectGroup(groupId)
                contentItem: ColumnLayout {
                    spacing: 0
                    RowLayout {
                        Label {
                            Layout.fillWidth: true
                            text: group.name
                            font.bold: true
                            elide: Text.ElideRight
                        }
                        Label {
                            text: group.kindText
                            color: palette.placeholderText
                        }
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: group.detailText
                        font.pixelSize: Theme.captionSize
                        color: palette.placeholderText
                        elide: Text.ElideRight
                    }
                }
            }
        }
        Label {
            Layout.fillWidth: true
            text: tab.model.externalGroupsHint
            font.pixelSize: Theme.captionSize
            color: palette.placeholderText
            wrapMode: Text.Wrap
        }
    }
    ColumnLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        spacing: 4

        RowLayout {
            Layout.fillWidth: true
            Label {
                Layout.fillWidth: true
                text: tab.model.selectedGroupName
                font.bold: true
                elide: Text.ElideRight
            }
            Button {
                objectName: "groupSettingsButton"
                text: "Einstellungen …"
                enabled: tab.model.selectedGroupID !== ""
                onClicked: tab.model.openGroupSettings(tab.model.selectedGroupID)
            }
            Button {
                objectName: "copyLinkButton"
                text: "Link kopieren"
                visible: tab.model.canCopySelectedLink
                onClicked: tab.model.copyPublicLink(tab.model.selectedGroupID)
            }
            Button {
                objectName: "deleteGroupButton"
                text: "Gruppe löschen"
                enabled: tab.model.canDeleteSelectedGroup
                onClicked: tab.model.requestDeleteGroup(tab.model.selectedGroupID)
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Button {
                objectName: "addTesterButton"
                text: "Tester hinzufügen"
                enabled: tab.model.selectedGroupID !== ""
                onClicked: tab.model.beginAddingTester()
            }
            Button {
                objectName: "importTestersButton"
                text: "Tester importieren …"
                enabled: tab.model.selectedGroupID !== ""
                onClicked: tab.model.beginImportingTesters()
            }
            Item {
                Layout.fillWidth: true
            }
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: tab.model.groupActionError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        GridLayout {
            Layout.fillWidth: true
            visible: tab.model.isAddingTester
            columns: 2
            Label {
                text: "E-Mail"
            }
            TextField {
                objectName: "newTesterEmailField"
                Layout.fillWidth: true
                text: tab.model.newTesterEmail
                placeholderText: "name@example.com"
                Accessible.name: "E-Mail"
                onTextEdited: tab.model.newTesterEmail = text
                onAccepted: tab.model.startAddTester()
            }
            Label {
                text: "Vorname"
            }
            TextField {
                objectName: "newTesterFirstNameField"
                Layout.fillWidth: true
                text: tab.model.newTesterFirstName
                Accessible.name: "Vorname"
                onTextEdited: tab.model.newTesterFirstName = text
            }
            Label {
                text: "Nachname"
            }
            TextField {
                objectName: "newTesterLastNameField"
                Layout.fillWidth: true
                text: tab.model.newTesterLastName
                Accessible.name: "Nachname"
                onTextEdited: tab.model.newTesterLastName = text
            }
            Label {
                Layout.columnSpan: 2
                Layout.fillWidth: true
                visible: text !== ""
                text: tab.model.addTesterError
                color: Theme.negative
                wrapMode: Text.Wrap
            }
            RowLayout {
                Layout.columnSpan: 2
                Button {
                    objectName: "cancelAddTesterButton"
                    text: "Abbrechen"
                    onClicked: tab.model.isAddingTester = false
                }
                Button {
                    objectName: "confirmAddTesterButton"
                    text: "Hinzufügen"
                    enabled: !tab.model.isSavingTester
                    onClicked: tab.model.startAddTester()
                }
            }
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: tab.model.testersError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        BusyIndicator {
            visible: tab.model.isLoadingTesters
            running: visible
        }
        ListView {
            id: testerList
            objectName: "testerList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: tab.model.testers
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Tester"
            delegate: ItemDelegate {
                id: tester
                required property string testerId
                required property string displayName
                required property string email
                required property string stateText
                required property string accessibleName
                objectName: "tester_" + testerId
                width: testerList.width
                Accessible.name: accessibleName
                contentItem: RowLayout {
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 0
                        Label {
                            Layout.fillWidth: true
                            text: tester.displayName
                            elide: Text.ElideRight
                        }
                        Label {
                            Layout.fillWidth: true
                            text: tester.email
                            font.pixelSize: Theme.captionSize
                            color: palette.placeholderText
                            elide: Text.ElideRight
                        }
                    }
                    Label {
                        text: tester.stateText
                        color: palette.placeholderText
                    }
                    Button {
                        objectName: "resend_" + tester.testerId
                        text: "Erneut einladen"
                        flat: true
                        onClicked: tab.model.startResendInvitation(tester.testerId)
                    }
                    Button {
                        objectName: "remove_" + tester.testerId
                        text: "Entfernen"
                        flat: true
                        onClicked: tab.model.startRemoveTester(tester.testerId)
                    }
                }
            }
        }
    }

}
