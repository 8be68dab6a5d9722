// A desktop's panel, as programs with a tray icon see it on the session bus. Like real panels it
// keeps a copy of the icon and its menu, and reads them again only when the program announces a
// change. Main thread, with Qt's loop running; crashes with its owner.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <string>
#include <vector>

namespace orlune::desktop {

class TrayPanel final : public QDBusVirtualObject {
    Q_OBJECT

  public:
    TrayPanel();
    ~TrayPanel() override;

    bool hasIcon() const { return !shown_.empty(); }
    std::string identifier() const { return identifier_; }

    struct Icon {
        std::string tip;
        QByteArray picture; ///< the pixels of the largest size

        bool operator==(const Icon&) const = default;
    };
    /// All icons that were shown, the current one last.
    const std::vector<Icon>& shown() const { return shown_; }
    bool tells(const std::string& tip) const { return hasIcon() && shown_.back().tip == tip; }

    /// The items as text: "Quit Orlune  Control+Q", "Orlune Enabled [x]", "(not to be chosen)", and
    /// "-" for a separator.
    std::vector<std::string> menu() const;
    bool offers(const std::string& item) const;

    /// Clicks the icon, or the item whose text begins like this.
    void activate();
    void choose(const std::string& title);

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

  private Q_SLOTS:
    void lookAtIcon();
    void lookAtMenu();

  private:
    struct Item {
        int id;
        std::string text;
    };

    QVariantList ask(const QString& path, const QString& interface, const QString& method,
                     const QVariantList& arguments);
    void receive(const QString& program);

    QDBusConnection bus_;
    QString program_;
    QString menuPath_;
    std::string identifier_;
    std::vector<Icon> shown_;
    std::vector<Item> menu_;
};

} // namespace orlune::desktop
