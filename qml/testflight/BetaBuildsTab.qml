pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The builds of the app with a row of figures over them and their beta state, and the chosen
// build's details beside them.
ColumnLayout {
    id: tab
    required property TestFlightViewModel model
    spacing: 8

    Flow {
        objectName: "statsRow"
        Layout.fillWidth: true
        spacing: 16
        Repeater {
            model: tab.model.stats
            delegate: ColumnLayout {
                id: stat
                required property string label
                required property string value
                required property int index
                objectName: "stat_" + index
                spacing: 0
                Accessible.role: Accessible.StaticText
                Accessible.name: label + ": " + value
                Label {
                    text: stat.value
                    font.pixelSize: Theme.headingSize
                    font.bold: true
                }
                Label {
                    text: stat.label
                    font.pixelSize: Theme.captionSize
                    color: palette.placeholderText
                }
            }
        }
    }
    RowLayout {
        Layout.fillWidth: true
        visible: tab.model.buildsError !== ""
        Label {
            Layout.fillWidth: true
            text: tab.model.buildsError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        Button {
            objectName: "retryBuildsButton"
            text: "Erneut versuchen"
            enabled: !tab.model.isLoadingBuilds
            onClicked: tab.model.startLoadBuilds(true)
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        spacing: 8

        ListView {
            id: buildList
            objectName: "buildList"
            Layout.fillHeight: true
            Layout.preferredWidth: 340
            clip: true
            model: tab.model.builds
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Builds"
            delegate: ItemDelegate {
                id: build
                required property string buildId
                required property string buildNumber
                required property string uploadedText
                required property string expiryText
                required property string internalState
                required property string externalState
                required property bool isSelected
                required property string accessibleName
                objectName: "build_" + buildId
                width: buildList.width
                highlighted: isSelected
                Accessible.name: accessibleName
                onClicked: tab.model.selectBuild(buildId)
                contentItem: ColumnLayout {
                    spacing: 0
                    RowLayout {
                        Layout.fillWidth: true
                        Label {
                            Layout.fillWidth: true
                            text: build.buildNumber
                            font.bold: true
                            elide: Text.ElideRight
                        }
                        Button {
                            objectName: "assignGroups_" + build.buildId
                            text: "Gruppen …"
                            flat: true
                            onClicked: tab.model.startAssigningGroups(build.buildId)
                        }
                    }
                    Label {
                        Layout.fillWidth: true
                        text: build.internalState
                        elide: Text.ElideRight
                    }
                    Label {
                        Layout.fillWidth: true
                        text: build.externalState
                        elide: Text.ElideRight
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: build.uploadedText
                        font.pixelSize: Theme.captionSize
                        color: palette.placeholderText
                        elide: Text.ElideRight
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: build.expiryText
                        font.pixelSize: Theme.captionSize
                        color: palette.placeholderText
                        elide: Text.ElideRight
                    }
                }
            }
        }
        BetaBuildDetailPane {
            Layout.fillWidth: true
            Layout.fillHeight: true
            model: tab.model
        }
    }
    BusyIndicator {
        visible: tab.model.isLoadingBuilds
        running: visible
    }
}
