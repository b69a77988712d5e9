#include "support/dialogos_guion.h"

#include <algorithm>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quimo::pruebas {

using foundation::Icono;
using foundation::Respuesta;

DialogosGuion::~DialogosGuion() {
    EXPECT_TRUE(previstas_.isEmpty()) << "never asked: " << previstas_.first().texto.toStdString();
    EXPECT_EQ(ocupado_, 0) << "the busy pointer was left on";
}

void DialogosGuion::Responder(const QString& texto, Respuesta respuesta,
                              std::function<void()> antes) {
    previstas_.append({texto, respuesta, std::move(antes)});
}

void DialogosGuion::ResponderSi(const QStringList& contiene, Respuesta respuesta) {
    previstas_.append({contiene.join(u'|'), respuesta, {}, contiene});
}

bool DialogosGuion::Prevista::Es(const QString& pregunta) const {
    if (contiene.isEmpty()) return pregunta == texto;
    return std::all_of(contiene.begin(), contiene.end(),
                       [&](const QString& parte) { return pregunta.contains(parte); });
}

void DialogosGuion::Avisar(const QString& texto, Icono icono, const QString& titulo) {
    static const QStringList kIconos = {u"-"_s, u"i"_s, u"!"_s, u"x"_s, u"?"_s};
    mostrados_ << u"["_s + kIconos[static_cast<qsizetype>(icono)] + u"] "_s + titulo + u'|' + texto;
}

Respuesta DialogosGuion::Preguntar(const QString& texto, foundation::Botones /*botones*/,
                                   Icono /*icono*/, const QString& /*titulo*/) {
    preguntas_ << texto;
    if (previstas_.isEmpty() || !previstas_.first().Es(texto)) {
        ADD_FAILURE() << "a question that nobody planned: " << texto.toStdString();
        return Respuesta::Cancelar;
    }
    const Prevista prevista = previstas_.takeFirst();
    if (prevista.antes) prevista.antes();
    return prevista.respuesta;
}

std::optional<QString> DialogosGuion::PedirTexto(const QString& texto, const QString& /*titulo*/) {
    ADD_FAILURE() << "asked for a text that nobody planned: " << texto.toStdString();
    return std::nullopt;
}

}  // namespace quimo::pruebas
