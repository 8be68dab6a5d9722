// The separately compiled parts of Asio (with TLS) and Beast; every other file only sees
// declarations.
#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/beast/src.hpp>
