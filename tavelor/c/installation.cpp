// SPDX-License-Identifier: MIT
// Installations and apartments.
#include "tavelor/services/installation.hpp"

#include <filesystem>

#include "tavelor/c/calls.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/settings_file.hpp"

using namespace tavelor::c;

namespace {

tavelor_installation& asInstallation(tavelor_installation* given) {
  return handle(given, Kind::kInstallation, "installation");
}

void take(std::string& setting, const char* given, std::string_view name) {
  if (given != nullptr) setting = text(given, name);
}

tavelor::Settings settingsOf(const tavelor_settings* given) {
  tavelor::Settings settings;
  if (given == nullptr) return settings;
  const tavelor_settings& wanted = sized(given, "settings");
  if (wanted.file != nullptr) settings = tavelor::readSettings(text(wanted.file, "file"));
  take(settings.locale, wanted.locale, "locale");
  take(settings.amountFormat, wanted.amount_format, "amount_format");
  take(settings.quantityFormat, wanted.quantity_format, "quantity_format");
  if (wanted.currency_decimals != 0) {
    settings.currencyDecimals = wanted.currency_decimals == -1 ? 0 : wanted.currency_decimals;
  }
  if (wanted.unsynchronised != 0) settings.synchronous = false;
  if (wanted.busy_timeout_ms != 0) settings.busyTimeoutMs = wanted.busy_timeout_ms;
  if (wanted.strict_modes != 0) settings.strictModes = true;
  if (wanted.server == nullptr) return settings;
  return tavelor::onServer(std::move(settings),
                           tavelor::engine::serverAddress(text(wanted.server, "server")));
}

/// Hands an apartment's prompts on to a function of the caller's.
class Prompts final : public tavelor::PromptHandler {
 public:
  Prompts(tavelor_prompt_handler handler, void* user) : handler_(handler), user_(user) {}

  void message(const tavelor::Prompt& prompt) override {
    ask(TAVELOR_PROMPT_MESSAGE, prompt, static_cast<std::int32_t>(prompt.kind));
  }
  tavelor::Variant askInput(const std::string& prompt) override {
    const char* const input = ask(TAVELOR_PROMPT_INPUT, {.text = prompt, .title = {}}).input;
    return optionalText(input, "input");
  }
  bool question(const tavelor::Prompt& prompt) override {
    return ask(TAVELOR_PROMPT_QUESTION, prompt).answer != 0;
  }
  void beep() override { ask(TAVELOR_PROMPT_BEEP, {}); }

 private:
  tavelor_prompt ask(std::int32_t kind, const tavelor::Prompt& of, std::int32_t severity = 0) {
    tavelor_prompt prompt{sizeof prompt,    kind,
                          severity,         of.text.c_str(),
                          of.title.c_str(),
                          /*answer=*/0,     /*input=*/nullptr};
    const tavelor_status raised = handler_(user_, &prompt);
    if (raised != 0) {
      tavelor::raise(raised, "Prompt", "The program's handler of prompts has failed");
    }
    return prompt;
  }

  tavelor_prompt_handler handler_;
  void* user_;
};

}  // namespace

const char* tavelor_version(void) {
  return TAVELOR_VERSION;
}

int32_t tavelor_abi(void) {
  return TAVELOR_ABI;
}

// ---------------------------------------------------------------------------------------------
// Installations

tavelor_status tavelor_installation_create(const char* folder, const tavelor_settings* settings,
                                           tavelor_installation** installation,
                                           tavelor_error** error) {
  return answered(error, [&] {
    output(installation, "installation");
    const std::string where(text(folder, "folder"));
    *installation = std::make_unique<tavelor_installation>(
                        tavelor::Installation::create(where, settingsOf(settings)))
                        .release();
  });
}

tavelor_status tavelor_installation_open(const char* path, tavelor_installation** installation,
                                         tavelor_error** error) {
  return answered(error, [&] {
    output(installation, "installation");
    std::filesystem::path where(text(path, "path"));
    if (where.filename() == tavelor::Installation::kSettingsFile) where = where.parent_path();
    // What a file's name alone lies in is the current folder.
    if (where.empty() && *path != '\0') where = ".";
    *installation =
        std::make_unique<tavelor_installation>(tavelor::Installation::open(where.string()))
            .release();
  });
}

void tavelor_installation_release(tavelor_installation* installation) {
  delete installation;
}

const char* tavelor_installation_folder(const tavelor_installation* installation) {
  return installation == nullptr ? nullptr : installation->installation->folder().c_str();
}

tavelor_status tavelor_installation_add_to_schema(tavelor_installation* installation,
                                                  int32_t selector, const char* ddl,
                                                  tavelor_error** error) {
  return answered(error, [&] {
    asInstallation(installation).installation->addToSchema(selector, text(ddl, "ddl"));
  });
}

// ---------------------------------------------------------------------------------------------
// Apartments

tavelor_status tavelor_apartment_open(tavelor_installation* installation,
                                      tavelor_apartment** apartment, tavelor_error** error) {
  return answered(error, [&] {
    const tavelor_installation& of = asInstallation(installation);
    output(apartment, "apartment");
    *apartment = std::make_unique<tavelor_apartment>(of.installation).release();
  });
}

void tavelor_apartment_close(tavelor_apartment* apartment) {
  if (apartment == nullptr) return;
  if (apartment->room->end()) delete apartment;
}

tavelor_status tavelor_apartment_now(tavelor_apartment* apartment, double* moment,
                                     tavelor_error** error) {
  return answered(error, [&] {
    Room& room = *asApartment(apartment).room;
    const Inside inside(room);
    output(moment, "moment") = room.apartment().clock().now().days();
  });
}

tavelor_status tavelor_apartment_fix_clock(tavelor_apartment* apartment, const double* moment,
                                           tavelor_error** error) {
  return answered(error, [&] {
    Room& room = *asApartment(apartment).room;
    const Inside inside(room);
    if (moment == nullptr) {
      room.apartment().clock().release();
    } else {
      const tavelor::Date fixed(*moment);
      static_cast<void>(fixed.civil());  // raises where it is no date
      room.apartment().clock().fix(fixed);
    }
  });
}

tavelor_status tavelor_apartment_set_prompts(tavelor_apartment* apartment,
                                             tavelor_prompt_handler handler, void* user,
                                             tavelor_error** error) {
  return answered(error, [&] {
    Room& room = *asApartment(apartment).room;
    const Inside inside(room);
    room.apartment().setPromptHandler(
        handler == nullptr ? nullptr : std::make_shared<Prompts>(handler, user));
  });
}

tavelor_status tavelor_apartment_message_count(tavelor_apartment* apartment, size_t* count,
                                               tavelor_error** error) {
  return answered(error, [&] {
    Room& room = *asApartment(apartment).room;
    const Inside inside(room);
    output(count, "count") = room.apartment().promptGlobal().messages().size();
  });
}

tavelor_status tavelor_apartment_message(tavelor_apartment* apartment, size_t index,
                                         tavelor_prompt* message, tavelor_error** error) {
  return answered(error, [&] {
    Room& room = *asApartment(apartment).room;
    const Inside inside(room);
    tavelor_prompt& out = sized(message, "message");
    const auto& kept = room.apartment().promptGlobal().messages();
    if (index >= kept.size()) {
      tavelor::raise(tavelor::errors::kSubscriptOutOfRange, kSource,
                     "There are " + std::to_string(kept.size()) + " messages");
    }
    const tavelor::Prompt& each = kept[index];
    out = {sizeof out,        TAVELOR_PROMPT_MESSAGE, static_cast<std::int32_t>(each.kind),
           each.text.c_str(), each.title.c_str(),
           /*answer=*/0,
           /*input=*/nullptr};
  });
}

tavelor_status tavelor_apartment_clear_messages(tavelor_apartment* apartment,
                                                tavelor_error** error) {
  return answered(error, [&] {
    Room& room = *asApartment(apartment).room;
    const Inside inside(room);
    room.apartment().promptGlobal().clearMessages();
  });
}
