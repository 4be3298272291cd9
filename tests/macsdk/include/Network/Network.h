// See dispatch/dispatch.h. For plain C++ only.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#pragma clang assume_nonnull begin

#define MACSDK_NW_DECL(type) typedef struct type* type##_t
MACSDK_NW_DECL(nw_parameters);
MACSDK_NW_DECL(nw_protocol_stack);
MACSDK_NW_DECL(nw_protocol_options);
MACSDK_NW_DECL(nw_protocol_definition);
MACSDK_NW_DECL(nw_protocol_metadata);
MACSDK_NW_DECL(nw_listener);
MACSDK_NW_DECL(nw_connection);
MACSDK_NW_DECL(nw_endpoint);
MACSDK_NW_DECL(nw_error);
MACSDK_NW_DECL(nw_content_context);

typedef enum { nw_ws_version_invalid = 0, nw_ws_version_13 = 1 } nw_ws_version_t;
typedef enum {
    nw_ws_opcode_invalid = -1,
    nw_ws_opcode_cont = 0,
    nw_ws_opcode_text = 1,
    nw_ws_opcode_binary = 2,
    nw_ws_opcode_close = 8,
    nw_ws_opcode_ping = 9,
    nw_ws_opcode_pong = 10
} nw_ws_opcode_t;
typedef enum {
    nw_listener_state_invalid = 0,
    nw_listener_state_waiting = 1,
    nw_listener_state_ready = 2,
    nw_listener_state_failed = 3,
    nw_listener_state_cancelled = 4
} nw_listener_state_t;
typedef enum {
    nw_connection_state_invalid = 0,
    nw_connection_state_waiting = 1,
    nw_connection_state_preparing = 2,
    nw_connection_state_ready = 3,
    nw_connection_state_failed = 4,
    nw_connection_state_cancelled = 5
} nw_connection_state_t;
typedef enum {
    nw_endpoint_type_invalid = 0,
    nw_endpoint_type_address = 1,
    nw_endpoint_type_host = 2,
    nw_endpoint_type_bonjour_service = 3,
    nw_endpoint_type_url = 4
} nw_endpoint_type_t;
typedef enum {
    nw_error_domain_invalid = 0,
    nw_error_domain_posix = 1,
    nw_error_domain_dns = 2,
    nw_error_domain_tls = 3,
    nw_error_domain_wifi_aware __attribute__((availability(macos, introduced = 26.0))) = 4
} nw_error_domain_t;

typedef void (^nw_parameters_configure_protocol_block_t)(nw_protocol_options_t options);
typedef void (^nw_listener_state_changed_handler_t)(nw_listener_state_t state, nw_error_t _Nullable error);
typedef void (^nw_listener_new_connection_handler_t)(nw_connection_t connection);
typedef void (^nw_connection_state_changed_handler_t)(nw_connection_state_t state, nw_error_t _Nullable error);
typedef void (^nw_connection_receive_completion_t)(dispatch_data_t _Nullable content,
                                                   nw_content_context_t _Nullable context, bool is_complete,
                                                   nw_error_t _Nullable error);
typedef void (^nw_connection_send_completion_t)(nw_error_t _Nullable error);

extern "C" {
void* nw_retain(void* object);
void nw_release(void* object);

extern const nw_parameters_configure_protocol_block_t _nw_parameters_configure_protocol_default_configuration;
extern const nw_parameters_configure_protocol_block_t _nw_parameters_configure_protocol_disable;
#define NW_PARAMETERS_DEFAULT_CONFIGURATION (_nw_parameters_configure_protocol_default_configuration)
#define NW_PARAMETERS_DISABLE_PROTOCOL (_nw_parameters_configure_protocol_disable)

nw_parameters_t nw_parameters_create_secure_tcp(nw_parameters_configure_protocol_block_t configure_tls,
                                                nw_parameters_configure_protocol_block_t configure_tcp);
void nw_parameters_set_reuse_local_address(nw_parameters_t parameters, bool reuse_local_address);
nw_protocol_stack_t nw_parameters_copy_default_protocol_stack(nw_parameters_t parameters);
void nw_protocol_stack_prepend_application_protocol(nw_protocol_stack_t stack, nw_protocol_options_t protocol);
nw_protocol_options_t nw_ws_create_options(nw_ws_version_t version);
void nw_ws_options_set_auto_reply_ping(nw_protocol_options_t options, bool auto_reply_ping);
nw_protocol_metadata_t nw_ws_create_metadata(nw_ws_opcode_t opcode);
nw_protocol_definition_t nw_protocol_copy_ws_definition(void);
bool nw_protocol_metadata_is_ws(nw_protocol_metadata_t metadata);
nw_ws_opcode_t nw_ws_metadata_get_opcode(nw_protocol_metadata_t metadata);

nw_listener_t _Nullable nw_listener_create_with_port(const char* port, nw_parameters_t parameters);
void nw_listener_set_queue(nw_listener_t listener, dispatch_queue_t queue);
void nw_listener_set_state_changed_handler(nw_listener_t listener,
                                           nw_listener_state_changed_handler_t _Nullable handler);
void nw_listener_set_new_connection_handler(nw_listener_t listener,
                                            nw_listener_new_connection_handler_t _Nullable handler);
void nw_listener_start(nw_listener_t listener);
void nw_listener_cancel(nw_listener_t listener);

void nw_connection_set_queue(nw_connection_t connection, dispatch_queue_t queue);
void nw_connection_set_state_changed_handler(nw_connection_t connection,
                                             nw_connection_state_changed_handler_t _Nullable handler);
void nw_connection_start(nw_connection_t connection);
void nw_connection_cancel(nw_connection_t connection);
void nw_connection_force_cancel(nw_connection_t connection);
nw_endpoint_t nw_connection_copy_endpoint(nw_connection_t connection);
void nw_connection_receive_message(nw_connection_t connection, nw_connection_receive_completion_t completion);
void nw_connection_send(nw_connection_t connection, dispatch_data_t _Nullable content,
                        nw_content_context_t context, bool is_complete,
                        nw_connection_send_completion_t completion);

nw_content_context_t nw_content_context_create(const char* context_identifier);
void nw_content_context_set_metadata_for_protocol(nw_content_context_t context,
                                                  nw_protocol_metadata_t protocol_metadata);
nw_protocol_metadata_t _Nullable nw_content_context_copy_protocol_metadata(nw_content_context_t context,
                                                                           nw_protocol_definition_t protocol);

nw_endpoint_type_t nw_endpoint_get_type(nw_endpoint_t endpoint);
const char* nw_endpoint_get_hostname(nw_endpoint_t endpoint);
char* nw_endpoint_copy_address_string(nw_endpoint_t endpoint);
uint16_t nw_endpoint_get_port(nw_endpoint_t endpoint);
nw_error_domain_t nw_error_get_error_domain(nw_error_t error);
int nw_error_get_error_code(nw_error_t error);
CFErrorRef nw_error_copy_cf_error(nw_error_t error);
}

#pragma clang assume_nonnull end
