#include "foundation/cls_ado.h"

#include <QStringBuilder>

#include "data/conexion_vigilada.h"
#include "data/consultar.h"
#include "data/fallos.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {

namespace {

data::FalloSql Cerrada() { return data::ConexionCerrada(u"ClsAdo"); }

QString TextoDe(const Cambio& cambio) {
    if (cambio.clase == Cambio::Clase::Insertar) {
        return "INSERT INTO "_L1 % cambio.tabla % " ("_L1 % cambio.campos % ") VALUES ("_L1 %
               cambio.valores % u')';
    }
    return "UPDATE "_L1 % cambio.tabla % " SET "_L1 % cambio.campos % " WHERE "_L1 % cambio.valores;
}

/// The program's own database login, unless the installation names another one.
data::DatosConexion ConAccesoPropio(data::DatosConexion datos) {
    datos.usuario = qEnvironmentVariable("QUIMO_BD_USUARIO", u"norsa"_s);
    datos.clave = qEnvironmentVariable("QUIMO_BD_CLAVE", u"lumex7310"_s);
    return datos;
}

}  // namespace

bool ClsAdo::Fallar(data::FalloSql fallo) {
    pendiente_ = std::move(fallo);
    return false;
}

bool ClsAdo::Reportar(data::FalloSql fallo) {
    Fallar(std::move(fallo));
    ManejaError();
    return false;
}

bool ClsAdo::Conectar(QString& PsNom_servidor, QString& PsBase_de_datos, QString& PsUID,
                      QString& PsPasswd) {
    pendiente_.reset();
    datos_ = {PsNom_servidor, PsBase_de_datos, PsUID, PsPasswd};
    auto abierta = conector_(datos_);
    while (!abierta && abierta.error().numero == data::FalloSql::kOtroAlAbrir) {
        datos_ = ConAccesoPropio(datos_);
        PsUID = datos_.usuario;
        PsPasswd = datos_.clave;
        dialogos_.ProcesarEventos();
        abierta = conector_(datos_);
    }
    if (!abierta) {
        Fallar(std::move(abierta).error());
        ManejaError();
        return false;
    }
    por_confirmar_.clear();
    conexion_ = std::make_unique<data::ConexionVigilada>(
        std::move(abierta).value(), [this](data::ConexionVigilada::Fin fin) {
            if (fin == data::ConexionVigilada::Fin::Confirmada) {
                CClsBitacora.EscribirLineas(por_confirmar_);
            }
            por_confirmar_.resize(0);  // its memory serves the next one
        });
    return true;
}

void ClsAdo::Desconectar() {
    if (conexion_ != nullptr) conexion_->Cerrar();
    conexion_.reset();
}

bool ClsAdo::Consultar(data::RecordsetPtr& PrdrVariable, const QString& PsConsulta, int /*PvTipo*/,
                       int /*PsLock*/, int /*PvOpciones*/) {
    if (!Conectado()) return Fallar(Cerrada());
    auto abierto = data::Recordset::Abrir(*conexion_, PsConsulta);
    if (!abierto) return Fallar(std::move(abierto).error());
    PrdrVariable = *std::move(abierto);
    return true;
}

bool ClsAdo::EjecutarCambio(const QString& sentencia) {
    if (!Conectado()) return Fallar(Cerrada());
    auto hecho = data::Correr(*conexion_, sentencia);
    if (!hecho) return Fallar(std::move(hecho).error());
    return true;
}

void ClsAdo::AlRegistro(const std::function<void(QByteArray& lineas)>& agregar) {
    if (Conectado() && conexion_->EnTransaccion()) {
        agregar(por_confirmar_);
        return;
    }
    QByteArray lineas;
    agregar(lineas);
    CClsBitacora.EscribirLineas(lineas);
}

void ClsAdo::Registrar(std::initializer_list<QStringView> partes) {
    AlRegistro([&](QByteArray& lineas) {
        ClsBitacora::AgregarLinea(lineas, CClsBitacora.Principio(), partes);
    });
}

void ClsAdo::RegistrarCambios(std::span<const Cambio> cambios) {
    if (cambios.empty()) return;
    AlRegistro([&](QByteArray& lineas) {
        const QByteArray principio = CClsBitacora.Principio();
        for (const Cambio& cambio : cambios) {
            if (cambio.clase == Cambio::Clase::Insertar) {
                const QStringView partes[] = {u"Valor insertado en ", cambio.tabla,
                                              u" campos: ",           cambio.campos,
                                              u" valores: ",          cambio.valores};
                ClsBitacora::AgregarLinea(lineas, principio, partes);
            } else {
                const QStringView partes[] = {u"Modificacion en ", cambio.tabla, u" Valor: ",
                                              cambio.campos};
                ClsBitacora::AgregarLinea(lineas, principio, partes);
            }
        }
    });
}

bool ClsAdo::Cambiar(const Cambio& cambio) {
    if (!EjecutarCambio(TextoDe(cambio))) return false;
    RegistrarCambios(std::span(&cambio, 1));
    return true;
}

qsizetype ClsAdo::CambiarVarios(const QVector<Cambio>& cambios) {
    if (cambios.isEmpty()) return 0;
    if (!Conectado()) {
        Fallar(Cerrada());
        return 0;
    }
    QStringList sentencias;
    sentencias.reserve(cambios.size());
    for (const Cambio& cambio : cambios)
        sentencias << TextoDe(cambio);
    const bool en_transaccion = conexion_->EnTransaccion();
    data::RespuestaSql respuesta = conexion_->EjecutarVarias(sentencias);
    const qsizetype hechos = respuesta.resultados.size();
    QUIMO_CHECK(respuesta.fallo ? hechos < cambios.size() : hechos == cambios.size());
    if (respuesta.fallo) Fallar(*std::move(respuesta.fallo));
    // What the failure itself undid was never there.
    const bool deshechos = hechos < cambios.size() && !conexion_->EnTransaccion() && en_transaccion;
    if (!deshechos) RegistrarCambios(std::span(cambios).first(static_cast<std::size_t>(hechos)));
    return hechos;
}

bool ClsAdo::Insertar(const QString& PsTabla, const QString& PsCampos, const QString& PsValores) {
    return Cambiar({Cambio::Clase::Insertar, PsTabla, PsCampos, PsValores});
}

bool ClsAdo::Modificar(const data::RecordsetPtr& PrdrConsulta, const QString& PsTabla,
                       const QString& PsActualizacion, const QString& PsCondicion,
                       bool PbReposicionar) {
    if (!Cambiar({Cambio::Clase::Modificar, PsTabla, PsActualizacion, PsCondicion})) return false;
    if (!PbReposicionar || PrdrConsulta == nullptr) return true;
    auto marcador = PrdrConsulta->Bookmark();
    auto releido = PrdrConsulta->Requery();
    if (!releido) return Fallar(std::move(releido).error());
    if (!marcador) return true;
    auto ido = PrdrConsulta->IrA(*marcador);
    if (!ido && !PrdrConsulta->Vacio()) ido = PrdrConsulta->MoveLast();
    if (!ido) return Fallar(std::move(ido).error());
    return true;
}

bool ClsAdo::Borrar(const data::RecordsetPtr& PrdrConsulta, const QString& PsTabla,
                    const std::optional<QString>& PsMensaje, const QString& PsCondicion,
                    bool PbPosicionar) {
    if (PsMensaje && dialogos_.Preguntar(u"¿Esta seguro de borrar "_s + *PsMensaje, Botones::SiNo,
                                         Icono::Pregunta, CpsTitulo) != Respuesta::Si) {
        return false;
    }
    const QString donde = PsCondicion.isEmpty() ? QString() : u" WHERE "_s + PsCondicion;
    if (!EjecutarCambio(u"DELETE FROM "_s + PsTabla + donde)) {
        ManejaError();
        return false;
    }
    Registrar({u"Valor borrado en ", PsTabla, u" condicion: ", PsCondicion});
    if (!PbPosicionar || PrdrConsulta == nullptr) return true;
    auto releido = PrdrConsulta->Requery();
    if (releido) return true;
    Fallar(std::move(releido).error());
    ManejaError();
    return false;
}

bool ClsAdo::Desplazar(const data::RecordsetPtr& PrdrVariable, const QString& PsDireccion,
                       qint32& PlnPosicion) {
    const QString direccion = PsDireccion.toUpper();
    data::Recordset::Hecho movido;
    if (direccion == u"SIGUIENTE"_s) {
        movido = PrdrVariable->MoveNext();
        if (movido) {
            ++PlnPosicion;
            if (PrdrVariable->Eof()) {
                dialogos_.Avisar(u"No hay mas registros"_s, Icono::Informacion, CpsTitulo);
                movido = PrdrVariable->MoveLast();
            }
        }
    } else if (direccion == u"ANTERIOR"_s) {
        movido = PrdrVariable->MovePrevious();
        if (movido) {
            --PlnPosicion;
            if (PrdrVariable->Bof()) {
                dialogos_.Avisar(u"No hay mas registros"_s, Icono::Informacion, CpsTitulo);
                movido = PrdrVariable->MoveFirst();
            }
        }
    } else if (direccion == u"PRIMERO"_s) {
        movido = PrdrVariable->MoveFirst();
        if (movido) PlnPosicion = 1;
    } else if (direccion == u"ULTIMO"_s) {
        movido = PrdrVariable->MoveLast();
        if (movido) PlnPosicion = static_cast<qint32>(PrdrVariable->RecordCount());
    } else {
        movido = data::FalloSql{
            kErrorPropio,
            {data::ErrorProveedor{QString(), 0, u"ClsRdo"_s, u"No existe ese desplazamiento"_s}}};
    }
    if (movido) return true;
    Fallar(std::move(movido).error());
    ManejaError();
    return false;
}

bool ClsAdo::Reposicionar(const data::RecordsetPtr& PAdo, bool PbNuevo, bool PbBorrar) {
    const auto colocar = [&]() -> data::Recordset::Hecho {
        if (PbBorrar) {
            QUIMO_TRY_VOID(PAdo->Delete());
            QUIMO_TRY_VOID(PAdo->MovePrevious());
            if (!PAdo->Bof()) return {};
            QUIMO_TRY_VOID(PAdo->Requery());
            return PAdo->Vacio() ? data::Recordset::Hecho() : PAdo->MoveFirst();
        }
        if (PbNuevo) {
            if (PAdo->EnAlta()) {
                QUIMO_TRY_VOID(PAdo->Update());
            }
            return PAdo->MoveLast();
        }
        QUIMO_TRY_VOID(PAdo->MoveNext());
        return PAdo->MovePrevious();
    };
    auto colocado = colocar();
    if (colocado) return true;
    Fallar(std::move(colocado).error());
    ManejaError();
    return false;
}

QVariant ClsAdo::dbExecStored(const QString& PwQuery, bool Par, data::RecordsetPtr* PAdoRecordset,
                              bool PbDevolver) {
    dialogos_.ProcesarEventos();
    QString consulta = PwQuery;
    while (consulta.startsWith(u' '))
        consulta.remove(0, 1);
    if (consulta.left(4).toUpper() != u"EXEC"_s) return 1;
    Registrar({consulta});
    data::RespuestaSql respuesta;
    if (Conectado()) {
        respuesta = conexion_->Ejecutar(consulta.mid(5));
    } else {
        respuesta.fallo = Cerrada();
    }
    if (respuesta.fallo) {
        Fallar(*std::move(respuesta.fallo));
        ManejaError();
        return -1;
    }
    if (!Par) return 1;
    for (data::ResultadoSql& resultado : respuesta.resultados) {
        if (!resultado.conjunto) continue;
        if (!PbDevolver) return resultado.conjunto->filas.value(0).value(0);
        if (PAdoRecordset != nullptr) {
            *PAdoRecordset =
                data::Recordset::DeConjunto(*conexion_, *std::move(resultado.conjunto));
        }
        return 1;
    }
    return {};
}

void ClsAdo::Inicia_Transaccion() {
    if (Conectado()) static_cast<void>(conexion_->Iniciar());
}

void ClsAdo::Termina_Transaccion() {
    if (Conectado()) static_cast<void>(conexion_->Confirmar());
}

void ClsAdo::Cancela_Transaccion() {
    if (Conectado()) static_cast<void>(conexion_->Revertir());
}

base::Result<QString, data::FalloSql> ValorCampo(ClsAdo& ado, const QString& tabla,
                                                 const QString& expresion,
                                                 const QString& condicion) {
    QString columna = expresion;
    QString seleccion = expresion;
    const qsizetype alias = expresion.toUpper().indexOf(u" AS"_s);
    if (alias >= 0) {
        seleccion = expresion.left(alias + 1) + u" AS _RESULT"_s;
        columna = u"_RESULT"_s;
    } else if (expresion.contains(u'.')) {
        seleccion += u" AS _RESULT"_s;
        columna = u"_RESULT"_s;
    }
    QString consulta = u"SELECT "_s + seleccion;
    if (!tabla.isEmpty()) consulta += u" FROM "_s + tabla;
    if (!condicion.isEmpty()) consulta += u" WHERE "_s + condicion;
    data::RecordsetPtr filas;
    if (!ado.Consultar(filas, consulta)) return *ado.Pendiente();
    QUIMO_TRY(const QVariant valor, filas->Campo(columna));
    return data::TextoDeValor(valor);
}

base::Result<QVector<EntradaCombo>, data::FalloSql> LlenaCombo(ClsAdo& ado,
                                                               const QString& consulta) {
    data::RecordsetPtr filas;
    if (!ado.Consultar(filas, consulta)) return *ado.Pendiente();
    QVector<EntradaCombo> entradas;
    while (filas->HayActual()) {
        QUIMO_TRY(const QVariant texto, filas->Campo(0));
        QUIMO_TRY(const QVariant dato, filas->Campo(1));
        entradas.append({data::TextoDeValor(texto), dato.toInt()});
        QUIMO_TRY_VOID(filas->MoveNext());
    }
    return entradas;
}

}  // namespace quimo::foundation
