pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// Analytics of the app, one tab per kind of data; each tab keeps its content in a file of its own.
Item {
    id: page
    required property AnalyticsViewModel model

    ColumnLayout {
        anchors.fill: parent
        spacing: 6

        TabBar {
            id: tabs
            objectName: "analyticsTabs"
            Layout.fillWidth: true
            TabButton {
                objectName: "analyticsTab_0"
                text: "Analytics"
            }
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: tabs.currentIndex
            AnalyticsReportsTab {
                model: page.model
            }
        }
    }
}
