#pragma once

#include "api/AuditLog.h"
#include "api/RowListModel.h"

#include <QAbstractListModel>
#include <QObject>

#include <memory>

// The change log's entries as rows of the page, newest first, keyed by the entry's id: a
// refresh inserts the new entries at the top and leaves the rows already shown alone, so the
// list keeps its scroll position and the row under the cursor.
class ChangeLogListModel : public RowListModel {
    Q_OBJECT
public:
    enum Column {
        EntryIDColumn,
        DateTextColumn,
        MethodColumn,
        PathColumn,
        StatusTextColumn,
        RequestIDTextColumn,
        AccountNameColumn,
        ErrorMessageColumn,
        IsSuccessColumn,
        SymbolColumn,
        SummaryColumn,
        MarkColumn,
        MarkColorColumn,
        AccessibleNameColumn,
        RequestLineColumn
    };

    explicit ChangeLogListModel(QObject* parent = nullptr);

    void setEntries(const QList<AuditLog::Entry>& entries);
};

// The page "Änderungsprotokoll": every write that left the application, an export as text and
// a way to start the log over.
class ChangeLogViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QAbstractListModel* entries READ entries CONSTANT)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY entriesChanged)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
    Q_PROPERTY(QString proposedFileName READ proposedFileName CONSTANT)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)

public:
    explicit ChangeLogViewModel(std::shared_ptr<AuditLog> log, QObject* parent = nullptr);

    QAbstractListModel* entries() const { return m_list; }
    bool isEmpty() const { return m_list->rowCount() == 0; }
    QString emptyText() const;
    QString proposedFileName() const;
    QString message() const { return m_message; }

    // Loads the entries; the page calls it when it opens and for "Aktualisieren". The log reads its
    // file at the first use, so nothing is read before the page is shown.
    Q_INVOKABLE void refresh();
    // Writes the log as tab-separated text, UTF-8, to a local path or a file:// URL.
    Q_INVOKABLE bool exportTo(const QString& pathOrFileUrl);
    // The file chosen in the save dialog.
    Q_INVOKABLE bool exportToChosenFile(const QUrl& file) { return exportTo(file.toString()); }
    // "Protokoll leeren": empties the log and shows what is left, which is nothing.
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void entriesChanged();
    void messageChanged();

private:
    void setMessage(const QString& message);

    std::shared_ptr<AuditLog> m_log;
    ChangeLogListModel* m_list;
    QString m_message;
};
