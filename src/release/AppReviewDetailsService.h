#pragma once

#include "release/ManagedAppReviewDetail.h"
#include "release/ManagedReviewAttachment.h"

#include <QCoro/QCoroTask>

#include <functional>
#include <memory>

class AppStoreConnectClient;

// The review details of a version (contact, demo account, notes) and their attachments.
class AppReviewDetailsService {
public:
    static constexpr int attachmentsLimit = 50;

    // A version without details yet gives a blank record whose `id` is absent.
    QCoro::Task<ManagedAppReviewDetail> reviewDetail(QString versionID,
                                                     std::shared_ptr<AppStoreConnectClient> client);
    // Updates the record when it has an id, else creates it for the version. Returns the record
    // as Apple has it afterwards.
    QCoro::Task<ManagedAppReviewDetail> save(ManagedAppReviewDetail detail, QString versionID,
                                             std::shared_ptr<AppStoreConnectClient> client);

    QCoro::Task<QList<ManagedReviewAttachment>> attachments(QString reviewDetailID,
                                                            std::shared_ptr<AppStoreConnectClient> client);
    // Reserves, transfers the parts one after the other (reporting the share done after each)
    // and commits with the file's MD5. Pass `progress` as a named std::function, not a lambda
    // built in the call.
    QCoro::Task<ManagedReviewAttachment> uploadAttachment(QString filePath, QString reviewDetailID,
                                                          std::shared_ptr<AppStoreConnectClient> client,
                                                          std::function<void(double)> progress);
    QCoro::Task<> deleteAttachment(QString attachmentID, std::shared_ptr<AppStoreConnectClient> client);
};
