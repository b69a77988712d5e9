#pragma once

#include <functional>

#include <QString>
#include <QStringList>
#include <QVector>

#include "data/reloj.h"
#include "foundation/dialogos.h"

namespace quimo::pruebas {

/// A user whose answers were written down before: the test fails on a question that the script does
/// not have next. Messages are kept as "[icon] title|text".
class DialogosGuion final : public foundation::Dialogos {
public:
    using Dialogos::Avisar;
    using Dialogos::Preguntar;

    ~DialogosGuion() override;

    /// The next question must have this text and gets this answer; `antes` runs before it is given.
    void Responder(const QString& texto, foundation::Respuesta respuesta,
                   std::function<void()> antes = {});
    /// The same for a long text: the question must contain all of these.
    void ResponderSi(const QStringList& contiene, foundation::Respuesta respuesta);
    /// The questions that were asked, in order.
    const QStringList& Preguntas() const { return preguntas_; }
    const QStringList& Mostrados() const { return mostrados_; }
    void Olvidar() { mostrados_.clear(); }

    void Avisar(const QString& texto, foundation::Icono icono, const QString& titulo) override;
    foundation::Respuesta Preguntar(const QString& texto, foundation::Botones botones,
                                    foundation::Icono icono, const QString& titulo) override;
    std::optional<QString> PedirTexto(const QString& texto, const QString& titulo) override;
    void Progreso(const QString& /*texto*/) override {}
    void Ocupado(bool ocupado) override { ocupado_ += ocupado ? 1 : -1; }
    void ProcesarEventos() override { ++eventos_; }
    int VecesEventos() const { return eventos_; }

private:
    struct Prevista {
        QString texto;
        foundation::Respuesta respuesta;
        std::function<void()> antes;
        QStringList contiene = {};

        bool Es(const QString& pregunta) const;
    };
    QVector<Prevista> previstas_;
    QStringList mostrados_;
    QStringList preguntas_;
    int ocupado_ = 0;
    int eventos_ = 0;
};

/// A clock that stands still.
class RelojFijo final : public data::Reloj {
public:
    explicit RelojFijo(QDateTime momento = QDateTime(QDate(2026, 11, 15), QTime(1, 30), Qt::UTC))
        : momento_(std::move(momento)) {}
    QDateTime Ahora() const override { return momento_; }
    void Poner(const QDateTime& momento) { momento_ = momento; }

private:
    QDateTime momento_;
};

}  // namespace quimo::pruebas
