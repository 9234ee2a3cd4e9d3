#include "x_resources.h"

#include <xcb/res.h>

#include <chrono>
#include <thread>
#include <utility>

#include "process.h"

namespace tintora::desktop_test {

namespace {

pid_t processOf(xcb_connection_t* x, std::uint32_t client) {
  const xcb_res_client_id_spec_t wanted{client, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const Received<xcb_res_query_client_ids_reply_t> reply(
      xcb_res_query_client_ids_reply(x, xcb_res_query_client_ids(x, 1, &wanted), nullptr));
  if (!reply || reply->num_ids == 0) return 0;
  const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
  return static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data));
}

std::string nameOf(xcb_connection_t* x, xcb_atom_t atom) {
  const Received<xcb_get_atom_name_reply_t> reply(
      xcb_get_atom_name_reply(x, xcb_get_atom_name(x, atom), nullptr));
  return {xcb_get_atom_name_name(reply.get()),
          static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

std::map<std::string, std::uint32_t> resourcesNow(const XClient& client, pid_t process) {
  xcb_connection_t* const x = client.connection();
  std::map<std::string, std::uint32_t> counts;
  const Received<xcb_res_query_clients_reply_t> clients(
      xcb_res_query_clients_reply(x, xcb_res_query_clients(x), nullptr));
  const auto* const first = xcb_res_query_clients_clients(clients.get());
  for (std::uint32_t i = 0; i < clients->num_clients; ++i) {
    if (processOf(x, first[i].resource_base) != process) continue;
    const Received<xcb_res_query_client_resources_reply_t> reply(
        xcb_res_query_client_resources_reply(
            x, xcb_res_query_client_resources(x, first[i].resource_base), nullptr));
    const auto* const types = xcb_res_query_client_resources_types(reply.get());
    for (std::uint32_t t = 0; t < reply->num_types; ++t) {
      counts[nameOf(x, types[t].resource_type)] += types[t].count;
    }
  }
  return counts;
}

}  // namespace

std::map<std::string, std::uint32_t> resourcesOf(const XClient& client, pid_t process) {
  constexpr int enough = 5;
  constexpr std::chrono::milliseconds between{20};
  auto counts = resourcesNow(client, process);
  int same = 0;
  eventually([&] {
    std::this_thread::sleep_for(between);
    auto next = resourcesNow(client, process);
    same = next == counts ? same + 1 : 0;
    counts = std::move(next);
    return same == enough;
  });
  return counts;
}

}  // namespace tintora::desktop_test
