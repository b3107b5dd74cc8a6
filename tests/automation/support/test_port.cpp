// winsock2.h before anything that includes windows.h.
#include "automation/support/test_port.h"

#include <gtest/gtest.h>
#include <winsock2.h>

#include <cstdlib>

namespace kavrel::tests {

namespace {

// From "127.0.0.1:1234", which the program was given.
std::uintptr_t Connect() {
    static const int isStarted = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    const char* const server = std::getenv("KAVREL_PORT_SERVER");
    if (isStarted != 0 || server == nullptr) return INVALID_SOCKET;
    const std::string text = server;
    const size_t colon = text.find(':');
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = inet_addr(text.substr(0, colon).c_str());
    address.sin_port = htons(static_cast<u_short>(std::atoi(text.c_str() + colon + 1)));
    const SOCKET connection = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        return connection;
    }
    closesocket(connection);
    return INVALID_SOCKET;
}

}  // namespace

TestPort::TestPort() : socket_(Connect()) {
    if (socket_ == INVALID_SOCKET) {
        ADD_FAILURE() << "no serial ports: tools/run_with_ports.py runs programs that need them";
        return;
    }
    number_ = std::atoi(ReadAnswer().c_str());
}

TestPort::~TestPort() {
    if (socket_ != INVALID_SOCKET) closesocket(socket_);
}

size_t TestPort::Offer(std::string_view bytes, int timeoutMs) {
    const std::string answer =
        Ask("feed " + std::to_string(bytes.size()) + ' ' + std::to_string(timeoutMs), bytes);
    return std::strtoul(answer.c_str(), nullptr, 10);
}

std::uint64_t TestPort::Feed(std::string_view bytes) {
    const std::string answer = Ask("feed " + std::to_string(bytes.size()) + " 20000", bytes);
    char* rest = nullptr;
    EXPECT_EQ(bytes.size(), std::strtoul(answer.c_str(), &rest, 10)) << "bytes that nobody read";
    return std::strtoull(rest, nullptr, 10);
}

void TestPort::StartStream(std::string_view text, int everyMs) {
    Ask("stream " + std::to_string(text.size()) + ' ' + std::to_string(everyMs), text);
}

void TestPort::StopStream() {
    Ask("stop");
}

std::string TestPort::Written(size_t count, int timeoutMs) {
    const std::string answer =
        Ask("written " + std::to_string(count) + ' ' + std::to_string(timeoutMs));
    std::string bytes(std::strtoul(answer.c_str(), nullptr, 10), '\0');
    if (!Receive(bytes.data(), bytes.size())) ADD_FAILURE() << "the server of ports has gone";
    return bytes;
}

void TestPort::SetListening(bool isOn) {
    Ask(isOn ? "listen 1" : "listen 0");
}

void TestPort::SetLines(const InputLines& lines) {
    std::string request = "lines";
    if (lines.cts) request += " CTS";
    if (lines.dsr) request += " DSR";
    if (lines.ring) request += " RING";
    if (lines.rlsd) request += " RLSD";
    Ask(request);
}

OutputLines TestPort::Lines() {
    const std::string names = Ask("outputs");
    return {names.find("DTR") != std::string::npos, names.find("RTS") != std::string::npos};
}

int TestPort::BaudRate() {
    return std::atoi(Ask("baud").c_str());
}

int TestPort::Breaks() {
    return std::atoi(Ask("breaks").c_str());
}

void TestPort::Unplug() {
    Ask("unplug");
}

void TestPort::PlugIn() {
    Ask("plug");
}

std::uint64_t TestPort::Time() {
    return std::strtoull(Ask("time").c_str(), nullptr, 10);
}

std::string TestPort::Ask(const std::string& request, std::string_view bytes) {
    if (socket_ == INVALID_SOCKET) return {};
    // In one piece: two would wait for each other's acknowledgement.
    if (!Send(request + '\n' + std::string(bytes))) ADD_FAILURE() << request << ": no server";
    return ReadAnswer();
}

std::string TestPort::ReadAnswer() {
    const std::string line = ReadLine();
    if (line.starts_with("ok ")) return line.substr(3);
    ADD_FAILURE() << "port " << number_ << ": " << line;
    return {};
}

std::string TestPort::ReadLine() {
    std::string line;
    for (char c; Receive(&c, 1) && c != '\n';)
        line += c;
    return line;
}

bool TestPort::Send(std::string_view bytes) {
    while (!bytes.empty()) {
        const int count = send(socket_, bytes.data(), static_cast<int>(bytes.size()), 0);
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

bool TestPort::Receive(char* bytes, size_t count) {
    while (count > 0) {
        const int received = recv(socket_, bytes, static_cast<int>(count), 0);
        if (received <= 0) return false;
        bytes += received;
        count -= static_cast<size_t>(received);
    }
    return true;
}

}  // namespace kavrel::tests
