#include "app/comandos/comando.h"
#include "programa_prueba.h"

using namespace Qt::StringLiterals;

namespace quimo::app {
namespace {

using UsoTest = ProgramaTest;

QString NombreDe(const DefComando& comando) { return QString::fromUtf16(comando.nombre); }

TEST_F(UsoTest, LaAyudaDiceTodosLosComandosYSusOpciones) {
    for (const QString& pedida : {u"--ayuda"_s, u"--help"_s}) {
        const QString ayuda = Hace({pedida});
        for (const DefComando& comando : Comandos()) {
            const QString linea = u"\n  quimoctl "_s + NombreDe(comando) + u' ' +
                                  QString::fromUtf16(comando.palabras);
            EXPECT_TRUE(ayuda.contains(linea)) << linea.toStdString();
            for (const DefOpcion& opcion : comando.opciones)
                EXPECT_TRUE(ayuda.contains(u"[--"_s + QString::fromUtf16(opcion.nombre)));
        }
    }
}

TEST_F(UsoTest, CadaComandoCuentaSusPalabrasYConoceSusOpciones) {
    Falla({}, kMalUso, u"Falta el comando.\nUso:"_s);
    Falla({u"abrir"_s}, kMalUso, u"Comando desconocido: abrir\nUso:"_s);
    for (const DefComando& comando : Comandos()) {
        const QString uso = u"\nUso:\n  quimoctl "_s + NombreDe(comando);
        QStringList palabras{NombreDe(comando)};
        for (int i = 0; i < comando.palabras_min; ++i) {
            Falla(palabras, kMalUso, u"Faltan argumentos."_s + uso);
            palabras << u"x"_s;
        }
        for (const QString& opcion : {u"--nada"_s, u"--nada=3"_s, u"--"_s})
            Falla(palabras + QStringList{opcion}, kMalUso,
                  u"Opción desconocida: "_s + opcion + uso);
        while (palabras.size() <= comando.palabras_max)
            palabras << u"x"_s;
        Falla(palabras + QStringList{u"de más"_s}, kMalUso,
              u"Sobra el argumento 'de más'."_s + uso);
        for (const DefOpcion& def : comando.opciones) {
            const QString opcion = u"--"_s + QString::fromUtf16(def.nombre);
            if (def.valor == nullptr) {
                Falla(palabras + QStringList{opcion + u"=1"_s}, kMalUso,
                      u"La opción "_s + opcion + u" no lleva valor."_s + uso);
                continue;
            }
            Falla(palabras + QStringList{opcion}, kMalUso,
                  u"Falta el valor de la opción "_s + opcion + u'.' + uso);
            if (def.repetible) continue;
            Falla(palabras + QStringList{opcion, u"1"_s, opcion + u"=2"_s}, kMalUso,
                  u"La opción "_s + opcion + u" está repetida."_s + uso);
        }
    }
}

TEST_F(UsoTest, LasOpcionesQueNoVanJuntasSeDicen) {
    const struct {
        QStringList argumentos;
        QString mensaje;
    } casos[] = {
        {{u"sql"_s}, u"Indique una de las opciones --consulta, --archivo o --lineas."_s},
        {{u"sql"_s, u"--lineas"_s, u"--consulta=SELECT 1"_s}, u"Indique una de las opciones"_s},
        {{u"sql"_s, u"--lineas"_s, u"--formato=xml"_s},
         u"El formato debe ser tabla, csv o json."_s},
        {{u"cerrar"_s, u"--ante-falla=seguir"_s}, u"admite abortar o ignorar."_s},
        {{u"cerrar"_s, u"--continuar"_s, u"--descartar"_s},
         u"Las opciones --continuar y --descartar no van juntas."_s},
        {{u"cerrar"_s, u"--traer=a.mdb"_s},
         u"Las opciones --traer ARCHIVO y --terminal NOMBRE van juntas."_s},
        {{u"cerrar"_s, u"--terminal=BARRA"_s}, u"van juntas."_s},
        {{u"cerrar"_s, u"--omitir=BARRA"_s, u"--enviar=CAJA1"_s},
         u"La opción --omitir sólo va con un cierre."_s},
    };
    for (const auto& caso : casos) {
        QStringList argumentos = caso.argumentos;
        argumentos.insert(1, u"embebido"_s);
        argumentos.insert(2, u"central.db"_s);
        Falla(argumentos, kMalUso, caso.mensaje);
    }
    EXPECT_FALSE(QFile::exists(Ruta(u"central.db"_s)));
}

}  // namespace
}  // namespace quimo::app
