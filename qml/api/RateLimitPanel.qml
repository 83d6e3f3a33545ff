pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// Apple's hourly budget as the last response reported it.
GroupBox {
    title: "Stundenbudget bei Apple"

    ColumnLayout {
        anchors.fill: parent
        spacing: 4
        Label {
            Layout.fillWidth: true
            visible: !Shell.rateLimit.hasData
            text: Shell.rateLimit.emptyText
            wrapMode: Text.Wrap
        }
        Label {
            visible: Shell.rateLimit.hasData
            text: Shell.rateLimit.remainingText
        }
        ProgressBar {
            Layout.fillWidth: true
            visible: Shell.rateLimit.hasData
            value: Shell.rateLimit.fraction
            Accessible.name: Shell.rateLimit.remainingText
        }
        Label {
            visible: Shell.rateLimit.hasData
            text: Shell.rateLimit.updatedAtText
            color: palette.placeholderText
        }
        Label {
            Layout.fillWidth: true
            text: Shell.rateLimit.explanation
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
    }
}
