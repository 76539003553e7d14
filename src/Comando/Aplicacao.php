<?php

declare(strict_types=1);

namespace Vorna\Mrel\Comando;

use Symfony\Component\Console\Application;
use Symfony\Component\Console\Command\Command;
use Symfony\Component\Console\CommandLoader\FactoryCommandLoader;
use Symfony\Component\Console\Exception\ExceptionInterface;
use Symfony\Component\Console\Input\ArgvInput;
use Symfony\Component\Console\Input\InputArgument;
use Symfony\Component\Console\Input\InputDefinition;
use Symfony\Component\Console\Input\InputOption;
use Vorna\Mrel\Falha;
use Vorna\Mrel\Falha\CartaNaoEnviada;
use Vorna\Mrel\Falha\EnvioFalhou;
use Vorna\Mrel\Falha\NaoConsolidado;
use Vorna\Mrel\Falha\NenhumDia;
use Vorna\Mrel\Versao;
use Vorna\Mrel\Visivel;

/** The command vtmrel: which commands there are, and how it ends when something is wrong. */
final class Aplicacao extends Application
{
    public const FEITO = 0;
    /** Work that failed, a trace not found, nothing consolidated yet. */
    public const NAO_FEITO = 1;
    /** Wrong usage or configuration, data or module missing or unreadable. */
    public const IMPOSSIVEL = 3;

    /** Of what could be asked for and was tried. */
    private const NAO_FEITAS = [NenhumDia::class, NaoConsolidado::class, NaoEncontrada::class, CartaNaoEnviada::class,
        EnvioFalhou::class];

    /** Each command under its name and its English name. */
    private const COMANDOS = [
        'dias' => Dias::class, 'days' => Dias::class,
        'horas' => Horas::class, 'hours' => Horas::class,
        'topo' => Topo::class, 'top' => Topo::class,
        'mensagens' => Mensagens::class, 'messages' => Mensagens::class,
        'rastro' => Rastro::class, 'trace' => Rastro::class,
        'consolida' => Consolida::class, 'consolidate' => Consolida::class,
        'exporta' => Exporta::class, 'export' => Exporta::class,
        'esquema' => Esquema::class, 'schema' => Esquema::class,
        'envia' => Envia::class, 'send' => Envia::class,
        'verifica' => Verifica::class, 'check' => Verifica::class,
        'relatorio' => Relatorio::class, 'report' => Relatorio::class,
        'exame' => Exame::class, 'doctor' => Exame::class,
        ConsolidaAqui::NOME => ConsolidaAqui::class,
    ];

    public function __construct()
    {
        parent::__construct('vtmrel', Versao::PACOTE);
        $this->setAutoExit(false);
        $this->setCatchExceptions(false);
        $this->setCommandLoader(new FactoryCommandLoader(
            array_map(static fn (string $classe): \Closure => static fn (): Command => new $classe(), self::COMANDOS)
        ));
    }

    /**
     * The whole of a run.
     *
     * @param list<string> $argumentos as the system gives them, the program's name first
     * @return int the exit code
     */
    public static function executa(array $argumentos): int
    {
        // Completion names the command after this one.
        $_SERVER['argv'][0] = $_SERVER['PHP_SELF'] = dirname(__DIR__, 2) . '/bin/vtmrel';
        // Else the console starts a program to ask for the size of the terminal.
        getenv('COLUMNS') !== false || putenv('COLUMNS=80');
        getenv('LINES') !== false || putenv('LINES=24');
        set_error_handler(static function (int $nivel, string $texto, string $arquivo, int $linha): bool {
            return (error_reporting() & $nivel) === 0
                ? false : throw new \ErrorException($texto, 0, $nivel, $arquivo, $linha);
        });
        $argumentos = Opcoes::traduz($argumentos);
        $lingua = Lingua::pedida($argumentos);
        try {
            $entrada = new ArgvInput($argumentos);
            $entrada->setInteractive(false);
            return (new self())->run($entrada, new Saida());
        } catch (SaidaPerdida $e) {
            $e->leitorSaiu() || self::diz($e->frase($lingua));
            return self::NAO_FEITO;
        } catch (Falha $e) {
            self::diz($e->frase($lingua));
            return in_array($e::class, self::NAO_FEITAS, true) ? self::NAO_FEITO : self::IMPOSSIVEL;
        } catch (ExceptionInterface $e) {
            self::diz(UsoErrado::doConsole($e)->frase($lingua));
            return self::IMPOSSIVEL;
        } catch (\Throwable $e) {
            self::diz(sprintf('%s (%s:%d)', $e->getMessage(), basename($e->getFile()), $e->getLine()));
            return self::NAO_FEITO;
        }
    }

    /** A sentence on standard error. */
    public static function diz(string $frase): void
    {
        // Nothing can be told when standard error is closed or full.
        @fwrite(STDERR, 'vtmrel: ' . Visivel::texto($frase) . "\n");
    }

    protected function getDefaultInputDefinition(): InputDefinition
    {
        return new InputDefinition([
            new InputArgument('command', InputArgument::REQUIRED, 'o comando / the command'),
            new InputOption('help', 'h', InputOption::VALUE_NONE, 'mostra como se usa / shows the use'),
            new InputOption('version', 'V', InputOption::VALUE_NONE, 'mostra a versão / shows the version'),
            new InputOption('no-interaction', null, InputOption::VALUE_NONE, 'nada se pergunta / nothing is asked'),
        ]);
    }

    protected function getDefaultCommands(): array
    {
        $textos = [
            'help' => 'Como se usa um comando / How a command is used',
            'list' => 'Os comandos que há / The commands that there are',
            'completion' => 'Escreve o complemento para o bash / Writes the completion for bash',
        ];
        $comandos = parent::getDefaultCommands();
        foreach ($comandos as $comando) {
            isset($textos[$comando->getName()]) && $comando->setDescription($textos[$comando->getName()]);
        }
        return $comandos;
    }
}
