#include "hosts/mac/FakeNetworkFramework.h"

#include "hosts/mac/FakeCoreFoundation.h"
#include "hosts/mac/FakeDispatch.h"
#include "hosts/mac/FakeDispatchData.h"

#include <Network/Network.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <map>

const nw_parameters_configure_protocol_block_t _nw_parameters_configure_protocol_default_configuration =
    ^(nw_protocol_options_t) {
    };
const nw_parameters_configure_protocol_block_t _nw_parameters_configure_protocol_disable =
    ^(nw_protocol_options_t) {
    };

namespace velloway::test {

FakeNetworkFramework fakeNetworkFramework;

namespace {

class Parameters : public FakeObject {
public:
    std::string tls, tcp, protocols;
    bool reusesAddress = false;
};

class Stack : public FakeObject {
public:
    explicit Stack(Parameters& of) : parameters(of) { parameters.retain(); }
    ~Stack() override { parameters.release(); }
    Parameters& parameters;
};

class Options : public FakeObject {
public:
    std::string text;
};

class Metadata : public FakeObject {
public:
    explicit Metadata(int ofMessage) : opcode(ofMessage) {}
    int opcode;
};

class Definition : public FakeObject {};

class Context : public FakeObject {
public:
    std::string identifier;
    int opcode = -1;
};

class EndpointObject : public FakeObject {
public:
    FakeNetworkFramework::EndpointKind kind = FakeNetworkFramework::EndpointKind::address;
    std::string host;
};

class Error : public FakeObject {
public:
    explicit Error(int posixCode) : code(posixCode) {}
    int code;
};

/// A reference that lives as long as a call.
template <class Object> class Temporary {
public:
    explicit Temporary(Object* object) : object_(object) {}
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    ~Temporary() {
        if (object_ != nullptr) {
            object_->release();
        }
    }
    template <class Native> Native as() const { return reinterpret_cast<Native>(object_); }

private:
    Object* object_;
};

Temporary<Error> errorFor(int posixCode) {
    return Temporary<Error>(posixCode != 0 ? new Error(posixCode) : nullptr);
}

class Connection : public FakeObject {
public:
    struct Message {
        /// Absent for a receive that brings no bytes.
        std::optional<std::string> bytes;
        bool isWhole = true;
        /// Of the WebSocket; without metadata of one at -1.
        int opcode = -1;
        /// Of a receive that fails alone.
        int posixCode = 0;
    };
    struct Send {
        FakePhone::Frame frame;
        HeldBlock<nw_connection_send_completion_t> completion;
        FakeData* data;
    };

    void setQueue(void* queue) { queue_ = queue; }
    void setHandler(nw_connection_state_changed_handler_t handler) {
        handler_ = HeldBlock<nw_connection_state_changed_handler_t>(handler);
    }

    void start() {
        if (state_ == nw_connection_state_invalid && !isEnded_) {
            enter(nw_connection_state_preparing, 0);
        }
    }
    void becomeReady() {
        if (!isEnded_ && state_ == nw_connection_state_preparing) {
            enter(nw_connection_state_ready, 0);
            onQueue([this] {
                flushSends();
                pump();
            });
        }
    }
    void receive(nw_connection_receive_completion_t completion) {
        receives_.emplace_back(completion);
        onQueue([this] { pump(); });
    }
    void send(Send send) {
        sends_.push_back(std::move(send));
        onQueue([this] { flushSends(); });
    }
    void deliver(Message message) {
        inbox_.push_back(std::move(message));
        onQueue([this] { pump(); });
    }
    void end(nw_connection_state_t last, int posixCode) {
        const bool wasFailed = isEnded_ && state_ == nw_connection_state_failed;
        if (isEnded_ && !(wasFailed && last == nw_connection_state_cancelled)) {
            return;
        }
        isEnded_ = true;
        endCode_ = posixCode;
        farEnd->isEnded = true;
        onQueue([this, last, posixCode] {
            pump();
            flushSends();
            report(last, last == nw_connection_state_failed ? posixCode : 0);
            if (last == nw_connection_state_cancelled) {
                handler_.reset();
            }
        });
    }

    std::shared_ptr<FakePhone::FarEnd> farEnd = std::make_shared<FakePhone::FarEnd>();

private:
    /// Nothing is reported before a queue is known.
    void onQueue(std::function<void()> job) {
        if (queue_ == nullptr) {
            return;
        }
        retain();
        fakeDispatch::post(queue_, [this, job = std::move(job)] {
            job();
            release();
        });
    }
    void enter(nw_connection_state_t state, int posixCode) {
        state_ = state;
        onQueue([this, state, posixCode] { report(state, posixCode); });
    }
    void report(nw_connection_state_t state, int posixCode) {
        state_ = state;
        if (handler_) {
            handler_(state, errorFor(posixCode).as<nw_error_t>());
        }
    }
    void pump() {
        if (isEnded_) {
            while (!receives_.empty()) {
                const auto completion = takeFirst(receives_);
                completion(nullptr, nullptr, false, errorFor(endCode_).as<nw_error_t>());
            }
            return;
        }
        while (state_ == nw_connection_state_ready && !receives_.empty() && !inbox_.empty()) {
            answer(takeFirst(receives_), takeFirst(inbox_));
        }
    }
    static void answer(const HeldBlock<nw_connection_receive_completion_t>& completion,
                       const Message& message) {
        const Temporary<FakeData> data(message.bytes ? new FakeData(inRegions(*message.bytes)) : nullptr);
        const Temporary<Context> context(message.posixCode == 0 ? new Context : nullptr);
        if (auto* const about = context.as<Context*>()) {
            about->opcode = message.opcode;
        }
        completion(data.as<dispatch_data_t>(), context.as<nw_content_context_t>(), message.isWhole,
                   errorFor(message.posixCode).as<nw_error_t>());
    }
    static std::vector<std::string> inRegions(const std::string& bytes) {
        std::vector<std::string> regions;
        const std::size_t count = fakeNetworkFramework.regions;
        for (std::size_t index = 0; index < count; ++index) {
            const std::size_t from = bytes.size() * index / count;
            const std::size_t to = bytes.size() * (index + 1) / count;
            regions.push_back(bytes.substr(from, to - from));
        }
        return regions;
    }
    void flushSends() {
        if (!isEnded_ && state_ != nw_connection_state_ready) {
            return;
        }
        while (!sends_.empty()) {
            const Send send = takeFirst(sends_);
            if (!isEnded_) {
                farEnd->frames.push_back(send.frame);
            }
            send.data->release();
            send.completion(errorFor(isEnded_ ? endCode_ : 0).as<nw_error_t>());
        }
    }
    template <class Element> static Element takeFirst(std::deque<Element>& from) {
        Element first = std::move(from.front());
        from.pop_front();
        return first;
    }

    void* queue_ = nullptr;
    HeldBlock<nw_connection_state_changed_handler_t> handler_;
    nw_connection_state_t state_ = nw_connection_state_invalid;
    bool isEnded_ = false;
    int endCode_ = 0;
    std::deque<HeldBlock<nw_connection_receive_completion_t>> receives_;
    std::deque<Message> inbox_;
    std::deque<Send> sends_;
};

class Listener : public FakeObject {
public:
    std::uint16_t port = 0;
    void* queue = nullptr;
    HeldBlock<nw_listener_state_changed_handler_t> stateHandler;
    HeldBlock<nw_listener_new_connection_handler_t> newConnectionHandler;

    static std::map<std::uint16_t, Listener*>& byPort() {
        static std::map<std::uint16_t, Listener*> listeners;
        return listeners;
    }

    void start() {
        const bool isFree = byPort().try_emplace(port, this).second;
        report(isFree ? nw_listener_state_ready : nw_listener_state_failed, isFree ? 0 : EADDRINUSE);
    }
    void cancel() {
        if (std::exchange(isCancelled_, true)) {
            return;
        }
        if (const auto found = byPort().find(port); found != byPort().end() && found->second == this) {
            byPort().erase(found);
        }
        report(nw_listener_state_cancelled, 0);
    }
    void accept(Connection* connection) {
        retain();
        fakeDispatch::post(queue, [this, connection] {
            if (newConnectionHandler) {
                newConnectionHandler(reinterpret_cast<nw_connection_t>(connection));
            }
            connection->release();
            release();
        });
    }

private:
    void report(nw_listener_state_t state, int posixCode) {
        if (queue == nullptr) {
            return;
        }
        retain();
        fakeDispatch::post(queue, [this, state, posixCode] {
            if (stateHandler) {
                stateHandler(state, errorFor(posixCode).as<nw_error_t>());
            }
            if (state == nw_listener_state_cancelled) {
                stateHandler.reset();
                newConnectionHandler.reset();
            }
            release();
        });
    }

    bool isCancelled_ = false;
};

class Phone : public FakePhone {
public:
    explicit Phone(Connection& connection) : connection_(connection) {
        connection_.retain();
        connection_.farEnd = farEnd;
    }
    ~Phone() override { connection_.release(); }

    void shakeHands() override { connection_.becomeReady(); }
    void sends(const std::string& bytes, bool isWholeMessage, bool hasMetadata) override {
        connection_.deliver({bytes, isWholeMessage, hasMetadata ? static_cast<int>(nw_ws_opcode_text) : -1});
    }
    void fails(int posixCode) override { connection_.end(nw_connection_state_failed, posixCode); }
    void failsToReceive(int posixCode) override {
        connection_.deliver({.isWhole = false, .posixCode = posixCode});
    }
    void closes(std::optional<int> code, const std::string& reason) override {
        connection_.deliver(
            {.bytes = code ? std::optional(reason) : std::nullopt, .opcode = nw_ws_opcode_close});
    }
    void endsStream() override { connection_.deliver({}); }

private:
    Connection& connection_;
};

void note(std::string call) {
    if (fakeNetworkFramework.onCall) {
        fakeNetworkFramework.onCall(call);
    }
    fakeNetworkFramework.calls.push_back(std::move(call));
}

template <class Object, class Native> Object& real(Native native) {
    return *static_cast<Object*>(reinterpret_cast<FakeObject*>(native));
}

template <class Native> Native native(FakeObject* object) {
    return reinterpret_cast<Native>(object);
}

std::string nameOf(nw_parameters_configure_protocol_block_t block) {
    return block == NW_PARAMETERS_DISABLE_PROTOCOL        ? "off"
           : block == NW_PARAMETERS_DEFAULT_CONFIGURATION ? "default"
                                                          : "custom";
}

} // namespace

std::shared_ptr<FakePhone> dialFake(std::uint16_t port) {
    const auto found = Listener::byPort().find(port);
    if (found == Listener::byPort().end()) {
        return nullptr;
    }
    auto* const connection = new Connection;
    auto phone = std::make_shared<Phone>(*connection);
    found->second->accept(connection);
    return phone;
}

extern "C" {

void* nw_retain(void* object) {
    static_cast<FakeObject*>(object)->retain();
    return object;
}
void nw_release(void* object) {
    static_cast<FakeObject*>(object)->release();
}

nw_parameters_t nw_parameters_create_secure_tcp(nw_parameters_configure_protocol_block_t tls,
                                                nw_parameters_configure_protocol_block_t tcp) {
    auto* const parameters = new Parameters;
    note("parameters tls=" + nameOf(tls) + " tcp=" + nameOf(tcp));
    return native<nw_parameters_t>(parameters);
}
void nw_parameters_set_reuse_local_address(nw_parameters_t parameters, bool reuse) {
    real<Parameters>(parameters).reusesAddress = reuse;
    note(std::string("reuse local address ") + (reuse ? "yes" : "no"));
}
nw_protocol_stack_t nw_parameters_copy_default_protocol_stack(nw_parameters_t parameters) {
    return native<nw_protocol_stack_t>(new Stack(real<Parameters>(parameters)));
}
void nw_protocol_stack_prepend_application_protocol(nw_protocol_stack_t stack, nw_protocol_options_t options) {
    std::string& protocols = real<Stack>(stack).parameters.protocols;
    protocols = real<Options>(options).text + protocols;
    note("prepend " + real<Options>(options).text);
}
nw_protocol_options_t nw_ws_create_options(nw_ws_version_t version) {
    auto* const options = new Options;
    options->text = version == nw_ws_version_13 ? "websocket 13" : "websocket ?";
    return native<nw_protocol_options_t>(options);
}
void nw_ws_options_set_auto_reply_ping(nw_protocol_options_t options, bool replies) {
    real<Options>(options).text += replies ? " with pongs" : " without pongs";
}
nw_protocol_metadata_t nw_ws_create_metadata(nw_ws_opcode_t opcode) {
    return native<nw_protocol_metadata_t>(new Metadata(opcode));
}
nw_protocol_definition_t nw_protocol_copy_ws_definition() {
    return native<nw_protocol_definition_t>(new Definition);
}
bool nw_protocol_metadata_is_ws(nw_protocol_metadata_t) {
    return true;
}
nw_ws_opcode_t nw_ws_metadata_get_opcode(nw_protocol_metadata_t metadata) {
    return static_cast<nw_ws_opcode_t>(real<Metadata>(metadata).opcode);
}

nw_listener_t nw_listener_create_with_port(const char* port, nw_parameters_t parameters) {
    const auto& wanted = real<Parameters>(parameters);
    note(std::string("listener on ") + port + ": " + wanted.protocols +
         (wanted.reusesAddress ? ", reuse" : ""));
    if (fakeNetworkFramework.refusesListeners) {
        return nullptr;
    }
    auto* const listener = new Listener;
    listener->port = static_cast<std::uint16_t>(std::stoi(port));
    return native<nw_listener_t>(listener);
}
void nw_listener_set_queue(nw_listener_t listener, dispatch_queue_t queue) {
    real<Listener>(listener).queue = queue;
    note("listener queue");
}
void nw_listener_set_state_changed_handler(nw_listener_t listener,
                                           nw_listener_state_changed_handler_t handler) {
    real<Listener>(listener).stateHandler = HeldBlock<nw_listener_state_changed_handler_t>(handler);
    note("listener state handler");
}
void nw_listener_set_new_connection_handler(nw_listener_t listener,
                                            nw_listener_new_connection_handler_t handler) {
    real<Listener>(listener).newConnectionHandler = HeldBlock<nw_listener_new_connection_handler_t>(handler);
    note("new connection handler");
}
void nw_listener_start(nw_listener_t listener) {
    note("listener start");
    real<Listener>(listener).start();
}
void nw_listener_cancel(nw_listener_t listener) {
    note("listener cancel");
    real<Listener>(listener).cancel();
}

void nw_connection_set_queue(nw_connection_t connection, dispatch_queue_t queue) {
    real<Connection>(connection).setQueue(queue);
}
void nw_connection_set_state_changed_handler(nw_connection_t connection,
                                             nw_connection_state_changed_handler_t handler) {
    real<Connection>(connection).setHandler(handler);
}
void nw_connection_start(nw_connection_t connection) {
    note("connection start");
    real<Connection>(connection).start();
}
void nw_connection_cancel(nw_connection_t connection) {
    note("connection cancel");
    real<Connection>(connection).end(nw_connection_state_cancelled, ECANCELED);
}
void nw_connection_force_cancel(nw_connection_t connection) {
    note("connection force cancel");
    real<Connection>(connection).end(nw_connection_state_cancelled, ECANCELED);
}
nw_endpoint_t nw_connection_copy_endpoint(nw_connection_t) {
    auto* const endpoint = new EndpointObject;
    endpoint->kind = fakeNetworkFramework.endpointKind;
    endpoint->host = fakeNetworkFramework.address;
    return native<nw_endpoint_t>(endpoint);
}
void nw_connection_receive_message(nw_connection_t connection, nw_connection_receive_completion_t completion) {
    real<Connection>(connection).receive(completion);
}
void nw_connection_send(nw_connection_t connection, dispatch_data_t content, nw_content_context_t context,
                        bool isComplete, nw_connection_send_completion_t completion) {
    auto& data = real<FakeData>(content);
    const auto& about = real<Context>(context);
    data.retain();
    real<Connection>(connection)
        .send({{data.bytes(), about.identifier, about.opcode, isComplete, data.inPlace()},
               HeldBlock<nw_connection_send_completion_t>(completion),
               &data});
}

nw_content_context_t nw_content_context_create(const char* identifier) {
    auto* const context = new Context;
    context->identifier = identifier;
    return native<nw_content_context_t>(context);
}
void nw_content_context_set_metadata_for_protocol(nw_content_context_t context,
                                                  nw_protocol_metadata_t metadata) {
    real<Context>(context).opcode = real<Metadata>(metadata).opcode;
}
nw_protocol_metadata_t nw_content_context_copy_protocol_metadata(nw_content_context_t context,
                                                                 nw_protocol_definition_t) {
    const int opcode = real<Context>(context).opcode;
    return opcode >= 0 ? native<nw_protocol_metadata_t>(new Metadata(opcode)) : nullptr;
}

nw_endpoint_type_t nw_endpoint_get_type(nw_endpoint_t endpoint) {
    switch (real<EndpointObject>(endpoint).kind) {
    case FakeNetworkFramework::EndpointKind::address:
        return nw_endpoint_type_address;
    case FakeNetworkFramework::EndpointKind::host:
        return nw_endpoint_type_host;
    case FakeNetworkFramework::EndpointKind::service:
        break;
    }
    return nw_endpoint_type_bonjour_service;
}
const char* nw_endpoint_get_hostname(nw_endpoint_t) {
    return "phone.local";
}
char* nw_endpoint_copy_address_string(nw_endpoint_t endpoint) {
    return ::strdup(real<EndpointObject>(endpoint).host.c_str());
}
std::uint16_t nw_endpoint_get_port(nw_endpoint_t) {
    return 50000;
}
nw_error_domain_t nw_error_get_error_domain(nw_error_t) {
    return nw_error_domain_posix;
}
int nw_error_get_error_code(nw_error_t error) {
    return real<Error>(error).code;
}
CFErrorRef nw_error_copy_cf_error(nw_error_t error) {
    return native<CFErrorRef>(new FakeText(std::strerror(real<Error>(error).code)));
}

} // extern "C"

} // namespace velloway::test
