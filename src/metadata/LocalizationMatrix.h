#pragma once

#include "metadata/ManagedLocalization.h"
#include "metadata/MetadataValidator.h"
#include "metadata/ScreenshotSummary.h"
#include "workspace/SidebarSection.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

// Which language of an app lacks what, at a glance: one row per language, one cell per text
// field and one for screenshots. A cell names the section and language that mend it. Pure value.
class LocalizationMatrix {
public:
    enum class CellState { Complete, Warning, Missing, Optional, Unknown };

    struct Column {
        QString id;
        QString title;
        std::optional<MetadataField> field; // none for the screenshot column
        SidebarSection section;
    };

    struct Cell {
        QString id; // locale + "." + column id
        QString columnID;
        CellState state = CellState::Unknown;
        std::optional<QString> detail;
        SidebarSection section = SidebarSection::AppInformation;
        QString locale;
        friend bool operator==(const Cell&, const Cell&) = default;
    };

    struct Row {
        QString id; // the locale
        QString locale;
        QString displayName;
        bool isPrimary = false;
        QList<Cell> cells; // in column order
        bool isIncomplete() const;
        friend bool operator==(const Row&, const Row&) = default;
    };

    QList<Row> rows;

    // The six columns in their order: name, subtitle, description, keywords, what's new, screenshots.
    static const QList<Column>& columns();

    static LocalizationMatrix make(const QList<ManagedLocalization>& localizations,
                                   const MetadataValidator::Context& context,
                                   const std::optional<QString>& primaryLocale,
                                   const QHash<QString, ScreenshotSummary>& screenshots,
                                   const MetadataValidator& validator = {});

    // Rows with a cell that is `Warning` or `Missing`; `Optional` and `Unknown` don't count.
    QList<Row> incompleteRows() const;
    // The header line: how many languages still need something, or that all are complete.
    QString summaryText() const;

    friend bool operator==(const LocalizationMatrix&, const LocalizationMatrix&) = default;
};
