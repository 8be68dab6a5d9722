// The compiled halves of Asio (with TLS) and Beast; every other file sees declarations only.
#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/beast/src.hpp>
