#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QJsonObject>
#include <QStringList>
#include <QTemporaryDir>

#include "dayclose/cierre/fin_de_dia.h"
#include "dayclose/cierre/trabajo_terminal.h"
#include "dayclose/terminales/carpeta_share.h"
#include "foundation/cls_ado.h"
#include "support/conexion_espia.h"
#include "support/dialogos_guion.h"
#include "terminal_prueba.h"

namespace quimo::dayclose::pruebas {

/// Mapped folders that fail where a test says so.
class ShareConFallas final : public TerminalShare {
public:
    enum class Operacion { Existe, Traer, Llevar };
    /// The number of the failure for an operation on a remote file, 0 for none; kDespues and the
    /// number: the operation is done, and fails all the same.
    static constexpr int kDespues = 1000;
    using Plan = std::function<int(Operacion, const QString& remoto)>;

    explicit ShareConFallas(const QString& raiz) : real_(raiz) {}
    void Poner(Plan plan) { plan_ = std::move(plan); }
    int Operaciones() const { return operaciones_; }

    ResultadoArchivo<bool> Existe(const QString& remoto) override;
    ResultadoArchivo<Copiado> Traer(const QString& remoto, const QString& local) override;
    ResultadoArchivo<void> Llevar(const QString& local, const QString& remoto,
                                  const QString& esperado) override;

private:
    std::optional<FalloArchivo> Falla(Operacion operacion, const QString& remoto);

    CarpetaShare real_;
    Plan plan_;
    int operaciones_ = 0;
};

/// The restaurant of the recorded day in a temporary folder: central database, program folder and
/// the three terminals' shares.
class Restaurante {
    QTemporaryDir carpeta_;  // before the ports, which live in it
    QString raiz_ = carpeta_.path();

public:
    Restaurante();

    QString Raiz() const { return raiz_; }
    QString Programa() const { return raiz_ + QStringLiteral("/dir"); }
    QString Terminal(const QString& nombre) const;
    QString ArchivoCentral() const { return raiz_ + QStringLiteral("/central.db"); }

    /// A new connection, as after a start of the program.
    void Reconectar();
    /// From now on the other restaurant's database, folder and terminals, as a second program
    /// there.
    void Usar(const Restaurante& otro);
    foundation::ClsAdo& Ado() { return *ado_; }
    QVector<data::Fila> Filas(const QString& consulta);
    QString Valor(const QString& consulta);
    void Mandar(const QString& sentencia);
    FinDeDia::Desenlace Cerrar();
    const ResumenCierre& Resumen() const { return resumen_; }
    /// Work on one terminal outside of a close.
    TrabajoTerminal Trabajo();
    /// The archived files of one terminal on the recorded day, by name.
    QStringList Archivados(const QString& terminal) const;
    QString EnArchivo(const QString& terminal, int version) const;

    quimo::pruebas::DialogosGuion dialogos;
    quimo::pruebas::RelojFijo reloj;
    ShareConFallas share;
    OpcionesCierre opciones;  ///< of the next close; nothing is waited for
    /// What the connections from the next Reconectar on are asked, and which of it fails.
    std::shared_ptr<quimo::pruebas::Cinta> cinta;

private:
    std::unique_ptr<foundation::ClsBitacora> bitacora_;
    std::unique_ptr<foundation::ClsAdo> ado_;
    ResumenCierre resumen_;
};

/// A JSON file of the recorded day.
QJsonObject LeerJson(const QString& ruta);

/// How a terminal's database differs from the recorded one; empty when it does not.
QStringList DiferenciasDeTerminal(const QString& archivo, const QString& nombre);

/// How the central sales tables differ from the recorded ones.
QStringList DiferenciasCentrales(Restaurante& restaurante);

/// The recorded day is closed, whole and without a rest.
void EsperarDiaCerrado(Restaurante& restaurante);

QByteArray Bytes(const QString& ruta);
void PonerBytes(const QString& ruta, const QByteArray& bytes);

/// Sales rows that one list has and the other has not.
QStringList Nuevas(const QStringList& despues, const QStringList& antes);

/// The sales rows after the undisturbed close of the recorded day.
const QStringList& VentasDelDia();

/// The rows of the recorded day, and besides them only a sale of terminal_prueba.
void EsperarVendida(Restaurante& restaurante, const Venta& venta);

/// How many orders a terminal's database holds, or why it cannot be read.
QString OrdenesEn(const QString& archivo);

/// What a summary says of what is missing.
QString LineasFaltantes(const ResumenCierre& resumen);

/// All sales rows as text, table by table, to compare before and after.
QStringList Ventas(Restaurante& restaurante);

}  // namespace quimo::dayclose::pruebas
