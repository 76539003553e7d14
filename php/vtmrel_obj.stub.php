<?php

/** @generate-class-entries */

/**
 * The reports of one mail relay: consolidates the dispatcher's logs and answers from the day files.
 *
 * @not-serializable
 */
#[AllowDynamicProperties]
final class vt_mrel
{
    public function __construct() {}

    /**
     * From now on, consolidate up to the present moment and also again on the same day. Cannot be
     * taken back.
     *
     * @return true
     */
    public function setForceMode() {}

    /**
     * Root of the output tree; "DAT" until set.
     *
     * @return string
     */
    public function getDataDir() {}

    /**
     * At most 128 bytes. The directory is made (one level, mode 0755) when it cannot be opened.
     *
     * @param string $dirpath
     * @return bool false when refused or not made
     */
    public function setDataDir($dirpath) {}

    /**
     * Directory of the dispatcher's logs; "LOGS" until set.
     *
     * @return string
     */
    public function getLogDir() {}

    /**
     * At most 128 bytes; need not exist yet.
     *
     * @param string $dirpath
     * @return bool false when refused
     */
    public function setLogDir($dirpath) {}

    /**
     * The number that setPeriods stored; 0 at first.
     *
     * @return int
     */
    public function getPeriods() {}

    /**
     * Keeps a number (its low 32 bits) for the script; nothing else reads it.
     *
     * @param int $periods
     * @return true
     */
    public function setPeriods($periods) {}

    /**
     * Adds local mail domains, separated by ";". They last as long as the object.
     *
     * @param string $domain
     * @return bool
     */
    public function add_domain($domain) {}

    /**
     * Consolidates all days up to today's midnight (in force mode: up to now), unless another process
     * is doing so. The point reached is kept in the file named.
     *
     * @param string $lastConsolidFile
     * @return false always
     */
    public function consolidate($lastConsolidFile) {}
}
