#pragma once

// The state that all connections of one service share. Owned by the service, which outlives its
// connections; only read on its I/O thread, except for the recognisers and the observations, which
// any thread may use.

#include "localservice/LocalService.h"
#include "localservice/Observation.h"
#include "localservice/RecogniserPool.h"

#include <boost/asio/ssl/context.hpp>
#include <boost/asio/thread_pool.hpp>

namespace orlune::localservice {

struct ServiceContext {
    LocalService::Options options;
    std::optional<boost::asio::ssl::context> encryption;
    std::shared_ptr<RecogniserPool> recognisers; ///< null when a script is played
    ObservationLog observations;
    /// Decode audio. Two threads, so that a stream that is ending does not delay the next one.
    boost::asio::thread_pool workers{2};

    void log(const std::string& line) const {
        if (options.log) {
            options.log(line);
        }
    }
};

} // namespace orlune::localservice
