// SPDX-License-Identifier: MIT
// A stand-in of the tax office. Debian's cpp-httplib serves it: it runs in the test's own process,
// speaks TLS, and lets an answer break off in its middle.
#include "tests/support/tax_office.hpp"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <pugixml.hpp>
#include <set>
#include <thread>

#include <fmt/format.h>
#include <httplib.h>

namespace tavelor::sending {

namespace {

constexpr const char* kSchemas =
    "https://www2.agenciatributaria.gob.es/static_files/common/internet/dep/aplicaciones/es/aeat/"
    "tike/cont/ws/";

pugi::xml_node within(pugi::xml_node node, std::initializer_list<const char*> path) {
  for (const char* const name : path) {
    pugi::xml_node found;
    for (const pugi::xml_node child : node.children()) {
      const std::string whole = child.name();
      if (whole.substr(whole.find(':') + 1) == name) {
        found = child;
        break;
      }
    }
    node = found;
  }
  return node;
}

std::string textAt(pugi::xml_node node, std::initializer_list<const char*> path) {
  return within(node, path).child_value();
}

std::string between(const std::string& text, std::string_view begin, std::string_view end) {
  const std::size_t from = text.find(begin);
  const std::size_t to = text.find(end);
  if (from == std::string::npos || to == std::string::npos) return text;
  return text.substr(from, to + end.size() - from);
}

std::string inEnvelope(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><env:Envelope "
         "xmlns:env=\"http://schemas.xmlsoap.org/soap/envelope/\"><env:Header/><env:Body>" +
         body + "</env:Body></env:Envelope>";
}

std::string fault(const char* who, const std::string& text) {
  return inEnvelope(fmt::format(
      "<env:Fault><faultcode>env:{}</faultcode><faultstring>{}</faultstring></env:Fault>", who,
      text));
}

struct Told {
  std::string state;
  int code = 0;
  std::string text{};
};

struct AnsweredLine {
  std::string number;
  std::string xml;
};

}  // namespace

struct TaxOffice::Inner {
  explicit Inner(std::unique_ptr<httplib::Server> made, const char* scheme)
      : server(std::move(made)) {
    server->Post("/office", [this](const httplib::Request& request, httplib::Response& response) {
      serve(request, response);
    });
    const int port = server->bind_to_any_port("127.0.0.1");
    url = fmt::format("{}://127.0.0.1:{}/office", scheme, port);
    thread = std::thread([this] { server->listen_after_bind(); });
    while (!server->is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  ~Inner() {
    release();
    server->stop();
    thread.join();
  }
  Inner(const Inner&) = delete;
  Inner& operator=(const Inner&) = delete;

  void release() {
    const std::lock_guard lock(mutex);
    isReleased = true;
    changed.notify_all();
  }

  void serve(const httplib::Request& request, httplib::Response& response) {
    std::unique_lock lock(mutex);
    const std::string body =
        between(request.body, "<RegFactuSistemaFacturacion", "</RegFactuSistemaFacturacion>");
    messages.push_back(body);
    Way way = Way::kProperly;
    if (!ways.empty()) {
      way = ways.front();
      ways.pop_front();
    }
    pugi::xml_document document;
    document.load_string(body.c_str());
    const pugi::xml_node message = document.document_element();
    if (way == Way::kUnavailable) {
      response.status = 503;
      return;
    }
    if (way == Way::kRedirect) {
      response.status = 302;
      response.set_header("Location", url);
      return;
    }
    if (way == Way::kHuge) {
      response.set_content(std::string(std::size_t{1} << 20U, ' '), "text/xml");
      return;
    }
    const auto isUnreadable = [&] {
      for (const pugi::xml_node record : message.children("RegistroFactura")) {
        if (unreadable.contains(numberOf(record.first_child()))) return true;
      }
      return false;
    };
    if (way == Way::kServerFault || way == Way::kClientFault || isUnreadable()) {
      response.status = 500;
      response.set_content(way == Way::kServerFault
                               ? fault("Server", "Codigo[103].Servicio no disponible")
                               : fault("Client", "Codigo[4102].El XML no cumple el esquema"),
                           "text/xml");
      return;
    }
    std::vector<AnsweredLine> lines;
    for (const pugi::xml_node record : message.children("RegistroFactura")) {
      lines.push_back(answerTo(record.first_child()));
    }
    if (way == Way::kBackward) std::reverse(lines.begin(), lines.end());
    if (way == Way::kWithoutFirst) lines.erase(lines.begin());
    if (way == Way::kTwice) lines.insert(lines.begin(), lines.front());
    if (way == Way::kWithStranger) {
      AnsweredLine stranger = lines.front();
      stranger.xml.replace(stranger.xml.find(">" + stranger.number + "<"),
                           stranger.number.size() + 2, ">Z/1<");
      lines.push_back(stranger);
    }
    if (way == Way::kOddWord) {
      std::string& xml = lines.front().xml;
      xml.replace(xml.find("Correcto"), 8, "Perfecto");
    }
    const std::string answer = answerOf(message, lines);
    if (way == Way::kProperly || way == Way::kBackward) answers.push_back(answer);
    std::string text = inEnvelope(answer);
    if (way == Way::kBroken) text.resize(text.size() - 20);
    if (way == Way::kLogin) text = "<html><body>Identifíquese</body></html>";
    if (way == Way::kHalf) {
      response.set_content_provider(
          text.size(), "text/xml",
          [text](std::size_t offset, std::size_t, httplib::DataSink& sink) {
            if (offset == 0) sink.write(text.data(), text.size() / 2);
            return offset == 0;
          });
      return;
    }
    if (way == Way::kNever) {
      isCalled = true;
      changed.notify_all();
      changed.wait(lock, [this] { return isReleased; });
    } else if (delay > 0) {
      const int milliseconds = delay;
      lock.unlock();
      std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    } else if (way == Way::kSlowly) {
      lock.unlock();
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    response.set_content(text, "text/xml");
  }

  static std::string numberOf(pugi::xml_node record) {
    return textAt(record, {"IDFactura", "NumSerieFactura"}) +
           textAt(record, {"IDFactura", "NumSerieFacturaAnulada"});
  }

  /// Its line, and what it does to what is known.
  AnsweredLine answerTo(pugi::xml_node record) {
    const bool isCancellation = std::string_view(record.name()) == "RegistroAnulacion";
    const char* const tail = isCancellation ? "Anulada" : "";
    const auto id = [&](const char* name) {
      return textAt(record, {"IDFactura", (std::string(name) + tail).c_str()});
    };
    const std::string issuer = id("IDEmisorFactura");
    const std::string number = id("NumSerieFactura");
    const std::string day = id("FechaExpedicionFactura");
    const std::string key = number + " " + day;
    const bool isCorrection = textAt(record, {"Subsanacion"}) == "S";
    const std::string refusal = textAt(record, {"RechazoPrevio"});
    const auto stored = known.find(key);
    const bool isThere = stored != known.end();
    Told told{.state = "Correcto"};
    std::string duplicate;
    if (const auto asked = verdicts.find(number); asked != verdicts.end()) {
      told = asked->second;
      verdicts.erase(asked);
    } else if (isCancellation) {
      if (!isThere && textAt(record, {"SinRegistroPrevio"}) != "S") {
        told = {"Incorrecto", 3002, "No existe el registro de facturación"};
      } else if (isThere && stored->second == "Anulada") {
        told = {"Incorrecto", 3001, "El registro de facturación ya ha sido dado de baja"};
        duplicate = stored->second;
      }
    } else if (!isCorrection && isThere) {
      told = {"Incorrecto", 3000, "Registro de facturación duplicado"};
      duplicate = stored->second;
    } else if (isCorrection && isThere == (refusal == "X")) {
      told = {"Incorrecto", 3003, "RechazoPrevio no concuerda con lo registrado"};
    }
    if (told.state != "Incorrecto") {
      known[key] = isCancellation             ? "Anulada"
                   : told.state == "Correcto" ? "Correcta"
                                              : "AceptadaConErrores";
      const std::string entry = fmt::format("{} {}",
                                            isCancellation ? "Anulacion"
                                            : isCorrection ? "Subsanacion"
                                                           : "Alta",
                                            key);
      taken.push_back(entry);
      if (listener) listener(entry);
    }
    std::string xml = fmt::format(
        "<r:RespuestaLinea><r:IDFactura><i:IDEmisorFactura>{}</i:IDEmisorFactura>"
        "<i:NumSerieFactura>{}</i:NumSerieFactura><i:FechaExpedicionFactura>{}"
        "</i:FechaExpedicionFactura></r:IDFactura><r:Operacion><i:TipoOperacion>{}"
        "</i:TipoOperacion></r:Operacion><r:EstadoRegistro>{}</r:EstadoRegistro>",
        issuer, number, day, isCancellation ? "Anulacion" : "Alta", told.state);
    if (told.code != 0) {
      xml += fmt::format(
          "<r:CodigoErrorRegistro>{}</r:CodigoErrorRegistro><r:DescripcionErrorRegistro>{}"
          "</r:DescripcionErrorRegistro>",
          told.code, told.text);
    }
    if (!duplicate.empty()) {
      xml += fmt::format(
          "<r:RegistroDuplicado><i:IdPeticionRegistroDuplicado>1</i:IdPeticionRegistroDuplicado>"
          "<i:EstadoRegistroDuplicado>{}</i:EstadoRegistroDuplicado></r:RegistroDuplicado>",
          duplicate);
    }
    return {number, xml + "</r:RespuestaLinea>"};
  }

  std::string answerOf(pugi::xml_node message, const std::vector<AnsweredLine>& lines) {
    std::size_t refused = 0;
    std::string all;
    for (const AnsweredLine& line : lines) {
      all += line.xml;
      refused += line.xml.find(">Incorrecto<") == std::string::npos ? 0U : 1U;
    }
    const pugi::xml_node taxpayer = within(message, {"Cabecera", "ObligadoEmision"});
    const char* const state = refused == 0              ? "Correcto"
                              : refused == lines.size() ? "Incorrecto"
                                                        : "ParcialmenteCorrecto";
    const std::string csv =
        refused == lines.size() ? "" : fmt::format("<r:CSV>A-{:04}</r:CSV>", messages.size());
    return fmt::format(
        "<r:RespuestaRegFactuSistemaFacturacion xmlns:r=\"{0}RespuestaSuministro.xsd\" "
        "xmlns:i=\"{0}SuministroInformacion.xsd\">{1}<r:Cabecera><i:ObligadoEmision>"
        "<i:NombreRazon>{2}</i:NombreRazon><i:NIF>{3}</i:NIF></i:ObligadoEmision></r:Cabecera>"
        "<r:TiempoEsperaEnvio>{4}</r:TiempoEsperaEnvio><r:EstadoEnvio>{5}</r:EstadoEnvio>{6}"
        "</r:RespuestaRegFactuSistemaFacturacion>",
        kSchemas, csv, textAt(taxpayer, {"NombreRazon"}), textAt(taxpayer, {"NIF"}), wait, state,
        all);
  }

  mutable std::mutex mutex;
  std::condition_variable changed;
  bool isCalled = false;
  bool isReleased = false;
  std::deque<Way> ways;
  std::set<std::string> unreadable;
  std::map<std::string, Told> verdicts;
  std::map<std::string, std::string> known;  // state of what was accepted, by number and day
  std::string wait = "60";
  int delay = 0;
  std::function<void(const std::string&)> listener;
  std::vector<std::string> messages;
  std::vector<std::string> answers;
  std::vector<std::string> taken;
  std::string url;
  std::unique_ptr<httplib::Server> server;
  std::thread thread;
};

TaxOffice::TaxOffice()
    : inner_(std::make_unique<Inner>(std::make_unique<httplib::Server>(), "http")) {}
TaxOffice::TaxOffice(const Papers& papers)
    : inner_(std::make_unique<Inner>(
          std::make_unique<httplib::SSLServer>(papers.certificate.c_str(), papers.key.c_str(),
                                               papers.clientAuthority.c_str()),
          "https")) {}
TaxOffice::~TaxOffice() = default;

std::string TaxOffice::url() const {
  return inner_->url;
}
void TaxOffice::next(Way way) {
  const std::lock_guard lock(inner_->mutex);
  inner_->ways.push_back(way);
}
void TaxOffice::cannotRead(const std::string& number) {
  const std::lock_guard lock(inner_->mutex);
  inner_->unreadable.insert(number);
}
void TaxOffice::refuse(const std::string& number, int code, const std::string& text) {
  const std::lock_guard lock(inner_->mutex);
  inner_->verdicts[number] = {"Incorrecto", code, text};
}
void TaxOffice::acceptWithErrors(const std::string& number, int code, const std::string& text) {
  const std::lock_guard lock(inner_->mutex);
  inner_->verdicts[number] = {"AceptadoConErrores", code, text};
}
void TaxOffice::know(const std::string& number, const std::string& day, const std::string& state) {
  const std::lock_guard lock(inner_->mutex);
  inner_->known[number + " " + day] = state;
}
void TaxOffice::setWait(const std::string& seconds) {
  const std::lock_guard lock(inner_->mutex);
  inner_->wait = seconds;
}
void TaxOffice::setDelay(int milliseconds) {
  const std::lock_guard lock(inner_->mutex);
  inner_->delay = milliseconds;
}
void TaxOffice::onTaken(std::function<void(const std::string&)> listener) {
  const std::lock_guard lock(inner_->mutex);
  inner_->listener = std::move(listener);
}
void TaxOffice::awaitCaller() {
  std::unique_lock lock(inner_->mutex);
  inner_->changed.wait(lock, [this] { return inner_->isCalled; });
}
void TaxOffice::release() {
  inner_->release();
}
std::vector<std::string> TaxOffice::messages() const {
  const std::lock_guard lock(inner_->mutex);
  return inner_->messages;
}
std::vector<std::string> TaxOffice::answers() const {
  const std::lock_guard lock(inner_->mutex);
  return inner_->answers;
}
std::vector<std::string> TaxOffice::taken() const {
  const std::lock_guard lock(inner_->mutex);
  return inner_->taken;
}

}  // namespace tavelor::sending
