pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App
import Varnis.Performance

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
            TabButton {
                objectName: "analyticsTab_1"
                text: "Leistung"
            }
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: tabs.currentIndex
            AnalyticsReportsTab {
                model: page.model
            }
            PerformanceTab {
                model: page.model.performance
            }
        }
    }
}
