// A desktop portal for cases that no real one can produce on demand: an answer that does not come,
// a refusal, a session that ends. It has a connection of its own to the bus, and answers on the
// thread that runs Qt's loop.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orlune::test {

class ScriptedPortal final : public QDBusVirtualObject {
    Q_OBJECT

  public:
    enum class Answer {
        granted = 0,
        refused = 1,
        ended = 2,
        none,
        error,         ///< to the call itself
        closedSession, ///< instead of an answer
    };

    /// Appears on the bus at once.
    ScriptedPortal(const std::string& busAddress, std::uint32_t version);
    ~ScriptedPortal() override;

    /// The answer to the next call of this method; later ones are granted again.
    void answerNext(const std::string& method, Answer answer) { answers_[method] = answer; }
    /// What a granted Start returns to recognise the consent by.
    void setToken(std::string token) { token_ = std::move(token); }
    void closeSession();
    /// Reports a shortcut: "Activated" or "Deactivated".
    void report(const QString& signal, const QString& shortcut);

    /// All calls since the last question, in order, with the options that matter:
    /// "SelectDevices restore_token=abc", "BindShortcuts dictate=F9 cancel".
    std::vector<std::string> takeCalls() { return std::exchange(calls_, {}); }
    const std::vector<std::string>& calls() const { return calls_; }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    void answerRequest(const QDBusMessage& message);

    QDBusConnection bus_;
    std::uint32_t version_;
    std::map<std::string, Answer> answers_;
    std::string token_;
    QString session_;
    std::vector<std::string> calls_;
};

} // namespace orlune::test
