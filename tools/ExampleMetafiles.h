// The bundled example metafiles (examples/example.emf and examples/example.wmf), made with
// the test builder so they show what the library draws.
#ifndef SVGMODULE_TESTS_EXAMPLEMETAFILES_H
#define SVGMODULE_TESTS_EXAMPLEMETAFILES_H

#include <QByteArray>

namespace examples {

QByteArray ExampleEmf();
QByteArray ExampleWmf();

}  // namespace examples

#endif
