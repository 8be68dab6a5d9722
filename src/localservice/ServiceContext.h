#pragma once

// What every connection of one service shares. Owned by the service, which outlives its
// connections; read on its I/O thread only, save for the recognisers and the observations, which
// any thread may use.

#include "localservice/LocalService.h"
#include "localservice/Observation.h"
#include "localservice/RecogniserPool.h"

#include <boost/asio/ssl/context.hpp>
#include <boost/asio/thread_pool.hpp>

namespace orlune {

struct ServiceContext {
    LocalService::Options options;
    std::optional<boost::asio::ssl::context> encryption;
    std::shared_ptr<RecogniserPool> recognisers; ///< none when a script is played
    ObservationLog observations;
    /// Where audio is decoded. Two threads: a stream that is ending must not hold up the next one.
    boost::asio::thread_pool workers{2};

    void log(const std::string& line) const {
        if (options.log) {
            options.log(line);
        }
    }
};

} // namespace orlune
