// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/RunningInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kService = u"org.nurvaudio.Workbench"_s;
const QString kPath = u"/org/nurvaudio/Workbench"_s;
const QString kInterface = u"org.freedesktop.Application"_s;
constexpr int kAnswerLimitMs = 5000;

} // namespace

RunningInstance::RunningInstance(const QDBusConnection &bus, QObject *parent) : QObject(parent), m_bus(bus) {}

RunningInstance::Role RunningInstance::claim()
{
    if (!m_bus.isConnected() || m_bus.interface() == nullptr)
        return Role::Unknown;
    // The object is there before the name, so that nobody finds the name without it.
    m_bus.registerObject(kPath, this, QDBusConnection::ExportScriptableSlots);
    const auto reply = m_bus.interface()->registerService(kService, QDBusConnectionInterface::DontQueueService,
                                                          QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return Role::Unknown;
    if (reply.value() == QDBusConnectionInterface::ServiceRegistered)
        return Role::First;
    m_bus.unregisterObject(kPath);
    return Role::Second;
}

bool RunningInstance::call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kInterface, method);
    message.setArguments(arguments);
    return m_bus.call(message, QDBus::Block, kAnswerLimitMs).type() == QDBusMessage::ReplyMessage;
}

bool RunningInstance::handOver(const QStringList &uris, const QString &page)
{
    // First the page: the files are for it.
    if (!page.isEmpty() && !call(u"ActivateAction"_s, {page, QVariantList(), QVariantMap()}))
        return false;
    if (!uris.isEmpty())
        return call(u"Open"_s, {uris, QVariantMap()});
    return !page.isEmpty() || call(u"Activate"_s, {QVariantMap()});
}

void RunningInstance::Activate(const QVariantMap &)
{
    Q_EMIT activationRequested();
}

void RunningInstance::Open(const QStringList &uris, const QVariantMap &)
{
    Q_EMIT openRequested(filesOfUris(uris));
}

void RunningInstance::ActivateAction(const QString &action, const QVariantList &, const QVariantMap &)
{
    Q_EMIT activationRequested();
    Q_EMIT pageRequested(action);
}

} // namespace nurv
