#include "platform/linux/wayland/DataControlPasteboard.h"

#include "platform/linux/wayland/PipeWriter.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <array>
#include <ext-data-control-v1-client-protocol.h>
#include <utility>
#include <wayland-client.h>
#include <wlr-data-control-unstable-v1-client-protocol.h>

namespace orlune {

namespace {

/// The types by which programs request plain text, including old names.
constexpr std::array textTypes{"text/plain;charset=utf-8", "text/plain", "UTF8_STRING", "TEXT",
                               "STRING"};

// The two protocols differ only in their names.

struct ExtDataControl {
    using Manager = ext_data_control_manager_v1;
    using Device = ext_data_control_device_v1;
    using Source = ext_data_control_source_v1;
    using Offer = ext_data_control_offer_v1;
    using DeviceListener = ext_data_control_device_v1_listener;
    using SourceListener = ext_data_control_source_v1_listener;
    static constexpr std::uint32_t version = 1;
    static const wl_interface& interface() { return ext_data_control_manager_v1_interface; }
    static constexpr auto makeSource = ext_data_control_manager_v1_create_data_source;
    static constexpr auto deviceOf = ext_data_control_manager_v1_get_data_device;
    static constexpr auto destroyManager = ext_data_control_manager_v1_destroy;
    static constexpr auto destroyDevice = ext_data_control_device_v1_destroy;
    static constexpr auto destroySource = ext_data_control_source_v1_destroy;
    static constexpr auto destroyOffer = ext_data_control_offer_v1_destroy;
    static constexpr auto listenToDevice = ext_data_control_device_v1_add_listener;
    static constexpr auto listenToSource = ext_data_control_source_v1_add_listener;
    static constexpr auto offerType = ext_data_control_source_v1_offer;
    static constexpr auto setClipboard = ext_data_control_device_v1_set_selection;
    static constexpr auto setPrimary = ext_data_control_device_v1_set_primary_selection;
};

struct WlrDataControl {
    using Manager = zwlr_data_control_manager_v1;
    using Device = zwlr_data_control_device_v1;
    using Source = zwlr_data_control_source_v1;
    using Offer = zwlr_data_control_offer_v1;
    using DeviceListener = zwlr_data_control_device_v1_listener;
    using SourceListener = zwlr_data_control_source_v1_listener;
    static constexpr std::uint32_t version = 2; // the first with a primary selection
    static const wl_interface& interface() { return zwlr_data_control_manager_v1_interface; }
    static constexpr auto makeSource = zwlr_data_control_manager_v1_create_data_source;
    static constexpr auto deviceOf = zwlr_data_control_manager_v1_get_data_device;
    static constexpr auto destroyManager = zwlr_data_control_manager_v1_destroy;
    static constexpr auto destroyDevice = zwlr_data_control_device_v1_destroy;
    static constexpr auto destroySource = zwlr_data_control_source_v1_destroy;
    static constexpr auto destroyOffer = zwlr_data_control_offer_v1_destroy;
    static constexpr auto listenToDevice = zwlr_data_control_device_v1_add_listener;
    static constexpr auto listenToSource = zwlr_data_control_source_v1_add_listener;
    static constexpr auto offerType = zwlr_data_control_source_v1_offer;
    static constexpr auto setClipboard = zwlr_data_control_device_v1_set_selection;
    static constexpr auto setPrimary = zwlr_data_control_device_v1_set_primary_selection;
};

} // namespace

class DataControlPasteboard::Device {
  public:
    virtual ~Device() = default;
    virtual bool offer(const std::string& text) = 0;
    virtual bool ownsPrimarySelection() const = 0;
};

template <typename Protocol>
class DataControlPasteboard::DeviceOf final : public Device {
  public:
    explicit DeviceOf(WaylandConnection& connection)
        : connection_(connection), manager_(static_cast<typename Protocol::Manager*>(
                                       connection.bind(Protocol::interface(), Protocol::version))),
          device_(Protocol::deviceOf(manager_, connection.seat())) {
        // Offers are not read, but their objects must be destroyed. libwayland 1.21 leaks an object
        // that is destroyed while a queued event still names it, so each one lives until the last
        // event about it, which says that it is now a selection.
        static constexpr typename Protocol::DeviceListener listener{
            .data_offer = [](void*, typename Protocol::Device*, typename Protocol::Offer*) {},
            .selection = [](void*, typename Protocol::Device*,
                            typename Protocol::Offer* offer) { destroy(offer); },
            .finished =
                [](void* data, typename Protocol::Device*) {
                    static_cast<DeviceOf*>(data)->isFinished_ = true;
                },
            .primary_selection = [](void*, typename Protocol::Device*,
                                    typename Protocol::Offer* offer) { destroy(offer); },
        };
        Protocol::listenToDevice(device_, &listener, this);
    }

    ~DeviceOf() override {
        clipboard_.release();
        primary_.release();
        Protocol::destroyDevice(device_);
        Protocol::destroyManager(manager_);
        connection_.flush();
    }

    bool offer(const std::string& text) override {
        if (!connection_.isAlive() || isFinished_) {
            return false;
        }
        const auto shared = std::make_shared<const std::string>(text);
        // The new sources replace the old ones before these are destroyed, so that no program finds
        // the clipboard empty in between.
        clipboard_.replace(*this, shared, Protocol::setClipboard);
        primary_.replace(*this, shared, Protocol::setPrimary);
        connection_.flush();
        return connection_.isAlive();
    }

    bool ownsPrimarySelection() const override {
        return connection_.isAlive() && primary_.source != nullptr;
    }

  private:
    /// Null where a selection has become empty.
    static void destroy(typename Protocol::Offer* offer) {
        if (offer) {
            Protocol::destroyOffer(offer);
        }
    }

    /// One selection that we own, or none.
    struct Selection {
        typename Protocol::Source* source = nullptr;
        std::shared_ptr<const std::string> text;
        QObject* writers = nullptr;

        template <typename Set>
        void replace(DeviceOf& device, std::shared_ptr<const std::string> newText, Set set) {
            static constexpr typename Protocol::SourceListener listener{
                .send =
                    [](void* data, typename Protocol::Source*, const char*, int descriptor) {
                        const auto& selection = *static_cast<Selection*>(data);
                        new PipeWriter(FileDescriptor(descriptor), selection.text,
                                       selection.writers);
                    },
                .cancelled =
                    [](void* data, typename Protocol::Source* cancelled) {
                        auto& selection = *static_cast<Selection*>(data);
                        if (cancelled == selection.source) {
                            selection.release();
                        }
                    },
            };
            auto* const former = source;
            source = Protocol::makeSource(device.manager_);
            text = std::move(newText);
            writers = &device.writers_;
            Protocol::listenToSource(source, &listener, this);
            for (const char* type : textTypes) {
                Protocol::offerType(source, type);
            }
            set(device.device_, source);
            if (former) {
                Protocol::destroySource(former);
            }
        }

        void release() {
            if (auto* const owned = std::exchange(source, nullptr)) {
                Protocol::destroySource(owned);
            }
        }
    };

    WaylandConnection& connection_;
    typename Protocol::Manager* manager_;
    typename Protocol::Device* device_;
    bool isFinished_ = false; ///< the seat has gone
    QObject writers_;         ///< the parent of the running writers
    Selection clipboard_;
    Selection primary_;
};

std::unique_ptr<DataControlPasteboard> DataControlPasteboard::open(WaylandConnection& connection) {
    const auto offers = [&](const auto& protocol) {
        return connection.offers(protocol.interface().name, protocol.version)
               && connection.seat() != nullptr;
    };
    std::unique_ptr<Device> device;
    if (offers(ExtDataControl{})) {
        device = std::make_unique<DeviceOf<ExtDataControl>>(connection);
    } else if (offers(WlrDataControl{})) {
        device = std::make_unique<DeviceOf<WlrDataControl>>(connection);
    }
    return std::unique_ptr<DataControlPasteboard>(
        device ? new DataControlPasteboard(std::move(device)) : nullptr);
}

DataControlPasteboard::DataControlPasteboard(std::unique_ptr<Device> device)
    : device_(std::move(device)) {}

DataControlPasteboard::~DataControlPasteboard() = default;

bool DataControlPasteboard::setString(const std::string& text) {
    return device_->offer(text);
}

bool DataControlPasteboard::ownsPrimarySelection() const {
    return device_->ownsPrimarySelection();
}

} // namespace orlune
